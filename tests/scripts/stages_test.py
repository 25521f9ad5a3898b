#!/usr/bin/env python3
"""Runs ./test over toys of which some stage fails.

    stages_test.py SOURCE
"""

import sys
import unittest
from pathlib import Path

from toy import Toy

TESTS = """
enable_testing()
foreach(name platform qos-agent QosOpenConfig qos_count doors)
    add_custom_target(${name})
endforeach()
get_filename_component(preset "${CMAKE_BINARY_DIR}" NAME)
set(outcome $<IF:$<STREQUAL:${preset},BROKEN>,false,true>)
add_test(NAME package/installs COMMAND "${CMAKE_COMMAND}" -E ${outcome})
add_test(NAME bench/meetsItsGoals COMMAND "${CMAKE_COMMAND}" -E true)
add_test(NAME agent/runs COMMAND "${CMAKE_COMMAND}" -E true)
"""


class StagesTest(Toy):
    source = Path(sys.argv[1])

    def outcome(self, broken, *arguments):
        self.write_project(["release", "dev"], TESTS.replace("BROKEN", broken))
        return self.run_script("test", *arguments)

    def test_runs_the_sanitized_tests_although_the_packages_fail(self):
        status, printed, errors = self.outcome("release")
        self.assertEqual(status, 8)
        self.assertIn("0% tests passed, 1 tests failed out of 1", printed)
        self.assertIn("100% tests passed, 0 tests failed out of 3", printed)
        self.assertTrue(errors.endswith("test: failed: packages\n"), errors)

    def test_tells_the_stage_that_fails_last(self):
        status, printed, errors = self.outcome("dev")
        self.assertEqual(status, 8)
        self.assertIn("100% tests passed, 0 tests failed out of 1", printed)
        self.assertTrue(errors.endswith("test: failed: sanitized\n"), errors)

    def test_runs_what_it_is_asked_for_alone(self):
        status, printed, errors = self.outcome("dev", "-R", "agent/")
        self.assertEqual((status, errors), (0, "building build/dev for the first time ...\n"))
        self.assertIn("100% tests passed, 0 tests failed out of 1", printed)

    def test_goes_on_after_a_build_that_fails(self):
        self.write_project(["dev"], TESTS)
        status, printed, errors = self.run_script("test")
        self.assertEqual(status, 1)
        self.assertIn("100% tests passed, 0 tests failed out of 3", printed)
        self.assertTrue(errors.endswith("test: failed: packages costs\n"), errors)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
