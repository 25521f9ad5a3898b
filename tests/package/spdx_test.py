#!/usr/bin/env python3
"""Holds the list of what qos-agent is built from to what a build has read and linked.

    spdx_test.py BUILD SOURCE
"""

import json
import re
import subprocess
import sys
import unittest
from pathlib import Path

BUILD = Path(sys.argv[1])
SOURCE = Path(sys.argv[2])
BINARIES = ("qos-agent", "libqosplatform.so.0", "libQosOpenConfig.so",
            "libqos-agent-gnmi.so")
#: The sanitizers' libraries: in builds for developers only.
INSTRUMENTS = re.compile(r"lib(asan|ubsan)\.so")


def output_of(*command):
    return subprocess.run(command, capture_output=True, text=True, check=True).stdout


def headers_read():
    """All files outside the project that the compiler has read for what is built by now."""
    files = (line.strip() for line in output_of("ninja", "-C", BUILD, "-t", "deps").splitlines()
             if line.startswith("    "))
    return {str(Path(file).resolve()) for file in files if file.startswith("/usr/")}


def libraries_loaded():
    found = set()
    for binary in (BUILD / "bin" / name for name in BINARIES):
        if not binary.exists():  # nothing on this machine to build it with
            continue
        loaded = re.findall(r"=> (/\S+)", output_of("ldd", binary))
        found.update(file for file in loaded if not file.startswith(str(BUILD)))
    return {file for file in found if not INSTRUMENTS.search(file)}


def packages_of(files):
    """The packages that the files belong to, and the files that belong to none."""
    # What lies in /usr/lib may be recorded in /lib.
    names = {root + file.removeprefix("/usr") for file in files for root in ("", "/usr")}
    found = subprocess.run(["dpkg", "-S", *sorted(names)], capture_output=True, text=True,
                           check=False).stdout
    lines = [line.rsplit(": ", 1) for line in found.splitlines()]
    owned = {file.removeprefix("/usr") for _, file in lines}
    missing = {file for file in files if file.removeprefix("/usr") not in owned}
    return {name.split(":")[0] for owner, _ in lines for name in owner.split(", ")}, missing


class SpdxTest(unittest.TestCase):
    def setUp(self):
        file = BUILD / "packaging/qos-agent.spdx.json"
        self.document = json.loads(file.read_text(encoding="utf-8"))
        self.packages = {package["SPDXID"]: package for package in self.document["packages"]}

    def named(self):
        locators = [reference["referenceLocator"] for package in self.packages.values()
                    for reference in package.get("externalRefs", [])]
        return {locator.rsplit("/", 1)[1].replace("%2B", "+") for locator in locators}

    def test_names_all_whose_headers_are_read(self):
        files = headers_read()
        self.assertTrue(any("nlohmann" in file for file in files), "nothing is built")
        owners, missing = packages_of(files)
        self.assertEqual(missing, set())
        self.assertLessEqual(owners, self.named())

    def test_names_all_whose_libraries_are_loaded(self):
        owners, missing = packages_of(libraries_loaded())
        self.assertEqual(missing, set())
        self.assertIn("libstdc++6", owners)
        self.assertLessEqual(owners, self.named())

    def test_tells_of_each_part_how_it_is_used_under_what_licence_and_in_what_version(self):
        related = {end for relation in self.document["relationships"]
                   for end in (relation["spdxElementId"], relation["relatedSpdxElement"])}
        self.assertEqual(related - {"SPDXRef-DOCUMENT"}, set(self.packages))
        for name, package in self.packages.items():
            with self.subTest(name=name):
                self.assertRegex(name, r"^SPDXRef-[A-Za-z0-9.-]+$")
                self.assertRegex(package["versionInfo"], r"^\d")
                if name != "SPDXRef-qos-agent":
                    self.assertNotEqual(package["licenseDeclared"], "NOASSERTION")

    def test_claims_no_licence_for_the_project_while_it_has_none(self):
        licences = [path.name for path in SOURCE.iterdir()
                    if re.match(r"(?i)(licen[cs]e|copying)", path.name)]
        declared = self.packages["SPDXRef-qos-agent"]["licenseDeclared"]
        self.assertEqual(declared == "NOASSERTION", not licences)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
