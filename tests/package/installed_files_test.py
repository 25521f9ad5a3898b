#!/usr/bin/env python3
"""Reads what was installed: which files, what they need, offer and tell.

    installed_files_test.py PREFIX [--shipped]

--shipped: the build is one that is shipped, not one for its developers.
"""

import re
import subprocess
import sys
import unittest
from pathlib import Path

from elf_faults import elf_faults, faults_of_symbols

PREFIX = Path(sys.argv[1])
IS_SHIPPED = "--shipped" in sys.argv[2:]
ROOT = Path(__file__).resolve().parents[2]

AGENT = PREFIX / "bin/qos-agent"
PLATFORM = next((PREFIX / "lib").rglob("libqosplatform.so"))
PLUG_IN = PREFIX / "lib/qos-agent/libQosOpenConfig.so"
GNMI = PREFIX / "lib/qos-agent/libqos-agent-gnmi.so"  # where there is what it is built with

# What of its own each may offer. Types and counters of the platform are one thing in all of them, as
# are templates of the language's library. Nothing needs to find a name in the plug-in.
OWN = "(?:Acl|Agent|Orin|OvSlab|Ovk|Plugin|Qos|QosOc|Strata|Vex)::"
COUNTERS = "OvSlab::TrackerOf<"
OFFERS = {
    AGENT: f"(?:{COUNTERS}|{OWN}.*kTypeName$|std::)",
    PLATFORM: f"(?:{OWN}|getToggleState[(]|std::)",
    PLUG_IN: COUNTERS,
    **({GNMI: "qosAgentDoor$"} if GNMI.exists() else {}),
}
# The plug-in's copies are of sizes known when it is compiled, or of none that a compiler knows.
MAY_LACK = {PLUG_IN: {"no call is fortified"}}


def output_of(*command):
    return subprocess.run(command, capture_output=True, text=True, check=True).stdout


def dynamic(file, tag):
    """The values of the file's dynamic entries with this tag."""
    return re.findall(rf"\({tag}\).*\[(.*)\]", output_of("readelf", "-dW", file))


class InstalledFilesTest(unittest.TestCase):
    def test_has_every_header_of_the_platform(self):
        def headers(root):
            return {path.relative_to(root) for path in (root / "platform").rglob("*.h")}
        self.assertEqual(headers(PREFIX / "include/qos-agent"), headers(ROOT))

    def test_needs_no_plug_in(self):
        for file in (AGENT, PLATFORM):
            self.assertFalse([name for name in dynamic(file, "NEEDED") if "QosOpenConfig" in name])
        self.assertIn("libqosplatform.so.0", dynamic(AGENT, "NEEDED"))
        self.assertIn("libqosplatform.so.0", dynamic(PLUG_IN, "NEEDED"))

    def test_looks_for_libraries_only_beside_itself(self):
        libraries = PLATFORM.parent.relative_to(PREFIX)
        self.assertEqual(dynamic(AGENT, "RUNPATH"), [f"$ORIGIN:$ORIGIN/../{libraries}"])
        self.assertEqual(dynamic(PLUG_IN, "RUNPATH"), [f"$ORIGIN:$ORIGIN/../../{libraries}"])
        self.assertEqual(dynamic(PLATFORM, "RUNPATH"), [])

    @unittest.skipUnless(GNMI.exists(), "the door is not built on this machine")
    def test_looks_for_the_libraries_of_a_door_beside_it(self):
        libraries = PLATFORM.parent.relative_to(PREFIX)
        self.assertEqual(dynamic(GNMI, "RUNPATH"), [f"$ORIGIN:$ORIGIN/../../{libraries}"])

    def test_offers_nothing_that_keeps_the_plug_in_loaded(self):
        self.assertEqual(list(faults_of_symbols(PLUG_IN, OFFERS[PLUG_IN])), [])

    @unittest.skipUnless(IS_SHIPPED, "the rest gets in the way of debugging")
    def test_is_hardened(self):
        for file, offers in OFFERS.items():
            with self.subTest(file=file.name):
                faults = set(elf_faults(file, offers, [ROOT]))
                self.assertEqual(faults - MAY_LACK.get(file, set()), set())


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
