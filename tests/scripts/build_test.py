#!/usr/bin/env python3
"""Builds a toy with and without a terminal.

    build_test.py SOURCE
"""

import sys
import unittest
from pathlib import Path

from toy import Toy

STEPS = """
add_custom_command(OUTPUT one COMMAND "${CMAKE_COMMAND}" -E echo "first words")
add_custom_command(OUTPUT two DEPENDS one COMMAND "${CMAKE_COMMAND}" -E false)
add_custom_target(good ALL DEPENDS one)
add_custom_target(bad DEPENDS two)
"""


class BuildTest(Toy):
    source = Path(sys.argv[1])

    def setUp(self):
        super().setUp()
        self.write_project(["toy"], STEPS)

    def test_prints_only_that_a_first_build_begins(self):
        self.assertEqual(self.run_script("scripts/build", "toy"),
                         (0, "", "building build/toy for the first time ...\n"))
        self.assertEqual(self.run_script("scripts/build", "toy"), (0, "", ""))

    def test_counts_its_steps_on_a_terminal_and_leaves_the_line_empty(self):
        shown = self.run_on_terminal("scripts/build", "toy")
        self.assertRegex(shown, r"^(\r\x1b\[Kbuilding build/toy: \d/\d)+\r\x1b\[K$")

    def test_prints_the_log_of_a_build_that_fails(self):
        status, printed, log = self.run_script("scripts/build", "toy", "bad")
        self.assertEqual((status, printed), (1, ""))
        self.assertIn("first words", log)
        self.assertIn("FAILED: two", log)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
