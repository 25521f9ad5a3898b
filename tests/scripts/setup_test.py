#!/usr/bin/env python3
"""Asks for packages on machines that lack them, or the means to install them.

    setup_test.py SOURCE
"""

import os
import shutil
import sys
import unittest
from pathlib import Path

from toy import Toy

NOBODY = 65534
#: What the script itself calls.
TOOLS = ("bash", "sed", "readlink", "dirname", "id", "env")


class SetupTest(Toy):
    source = Path(sys.argv[1])

    def machine_with(self, *tools, sets=("run",)):
        """Runs the script, as nobody, where only these tools are found."""
        programs = self.root / "programs"
        programs.mkdir()
        for tool in (*TOOLS, *tools):
            (programs / tool).symlink_to(shutil.which(tool))
        as_nobody = {"user": NOBODY, "group": NOBODY, "extra_groups": []}
        return self.run_script("scripts/setup", *sets, env={"PATH": str(programs)},
                               **(as_nobody if os.geteuid() == 0 else {}))

    def test_prints_nothing_if_all_is_there(self):
        self.assertEqual(self.run_script("scripts/setup", "run"), (0, "", ""))

    def test_names_the_command_to_run_as_root_where_there_is_no_sudo(self):
        self.assertEqual(self.machine_with("apt-get", "cmake"), (
            1, "", "setup: there is no sudo; please run as root: apt-get update && "
                   "apt-get install --no-install-recommends g++ ninja-build\n"))

    def test_names_the_packages_where_another_distribution_has_no_apt_get(self):
        self.assertEqual(self.machine_with("cmake"), (
            1, "", "setup: please install what these Debian packages hold: g++ ninja-build\n"))

    def test_names_the_packages_of_several_sets_once(self):
        status, printed, errors = self.machine_with("cmake", sets=("gnmi", "run", "http"))
        self.assertEqual((status, printed), (1, ""))
        missing = errors.split(": ")[2].split()
        self.assertEqual(len(missing), len(set(missing)))
        self.assertLess({"g++", "ninja-build", "pkgconf", "protobuf-compiler"}, set(missing))

    def test_refuses_a_set_that_it_does_not_know(self):
        self.assertEqual(self.run_script("scripts/setup", "run", "walk"),
                         (2, "", 'setup: unknown set "walk", try --help\n'))

    def test_refuses_to_guess_a_set(self):
        self.assertEqual(self.run_script("scripts/setup"),
                         (2, "", "setup: which set? try --help\n"))


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
