#!/usr/bin/env python3
"""Lets the checkers of others look at the packages, as far as they are installed.

    package_checks_test.py BUILD SOURCE lintian|systemd|mandoc
"""

import re
import shutil
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

BUILD = Path(sys.argv[1])
SOURCE = Path(sys.argv[2])
CHECK = sys.argv[3]
UNITS = SOURCE / "packaging/systemd"
PROGRAMS = {"lintian": "lintian", "systemd": "systemd-analyze", "mandoc": "mandoc"}
#: Of 10; what has no sandbox has 9.6.
MOST_EXPOSED = 1.0


def asked(*command, **options):
    done = subprocess.run(command, capture_output=True, text=True, check=False, timeout=300,
                          **options)
    return done.returncode, done.stdout + done.stderr


@unittest.skipUnless(shutil.which(PROGRAMS[CHECK]), f"{PROGRAMS[CHECK]} is not installed")
class PackageChecksTest(unittest.TestCase):
    @unittest.skipUnless(CHECK == "lintian", "not asked for")
    def test_lintian(self):
        packages = sorted((BUILD / "tests/packages").glob("*.deb"))
        self.assertEqual(len(packages), 7)
        self.assertEqual(asked("lintian", "--allow-root", "--pedantic", "--fail-on",
                               "error,warning,info,pedantic", *packages), (0, ""))

    @unittest.skipUnless(CHECK == "systemd", "not asked for")
    def test_systemd(self):
        with tempfile.TemporaryDirectory() as folder:
            for unit in UNITS.iterdir():
                text = unit.read_text().replace("/usr/bin/qos-agent", str(BUILD / "bin/qos-agent"))
                Path(folder, unit.name).write_text(text)
            units = sorted(Path(folder).iterdir())
            self.assertEqual(asked("systemd-analyze", "--man=no", "verify", *units), (0, ""))
            status, report = asked("systemd-analyze", "--offline=true", "--no-pager", "security",
                                   Path(folder, "qos-agent.service"))
        self.assertEqual(status, 0, report)
        level = re.search(r"exposure level for qos-agent\.service: ([\d.]+)", report)
        self.assertLessEqual(float(level[1]), MOST_EXPOSED, report)

    @unittest.skipUnless(CHECK == "mandoc", "not asked for")
    def test_mandoc(self):
        pages = sorted((SOURCE / "packaging").glob("*.[15]"))
        self.assertEqual(len(pages), 2)
        self.assertEqual(asked("mandoc", "-T", "lint", "-W", "warning", *pages), (0, ""))


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1], defaultTest=f"PackageChecksTest.test_{CHECK}")
