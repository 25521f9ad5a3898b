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

PREFIX = Path(sys.argv[1])
IS_SHIPPED = "--shipped" in sys.argv[2:]
ROOT = Path(__file__).resolve().parents[2]

AGENT = PREFIX / "bin/qos-agent"
PLATFORM = PREFIX / "lib/libqosplatform.so"
PLUG_IN = PREFIX / "lib/qos-agent/libQosOpenConfig.so"
BINARIES = (AGENT, PLATFORM, PLUG_IN)


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
        self.assertEqual(dynamic(AGENT, "RUNPATH"), ["$ORIGIN:$ORIGIN/../lib"])
        self.assertEqual(dynamic(PLUG_IN, "RUNPATH"), ["$ORIGIN:$ORIGIN/.."])
        self.assertEqual(dynamic(PLATFORM, "RUNPATH"), [])

    def test_offers_from_the_plug_in_only_shared_counters(self):
        symbols = output_of("nm", "-DC", "--defined-only", PLUG_IN).splitlines()
        self.assertEqual([line for line in symbols if "OvSlab::TrackerOf<" not in line], [])

    def test_has_no_symbol_that_keeps_the_plug_in_loaded(self):
        self.assertNotIn(" UNIQUE ", output_of("readelf", "-sW", "--dyn-syms", PLUG_IN))

    @unittest.skipUnless(IS_SHIPPED, "sanitizers report places in the sources")
    def test_tells_nothing_of_where_it_was_built(self):
        for file in BINARIES:
            with self.subTest(file=file.name):
                self.assertNotIn(str(ROOT).encode(), file.read_bytes())

    @unittest.skipUnless(IS_SHIPPED, "hardening gets in the way of debugging")
    def test_is_hardened(self):
        for file in BINARIES:
            with self.subTest(file=file.name):
                segments = output_of("readelf", "-lW", file)
                self.assertIn("GNU_RELRO", segments)
                self.assertRegex(segments, r"GNU_STACK.* RW ")
                self.assertIn(" NOW", output_of("readelf", "-dW", file))
        self.assertIn(" PIE", output_of("readelf", "-dW", AGENT))


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
