#!/usr/bin/env python3
"""Looks for clang's programs on machines that have several versions.

    clang_test.py SOURCE
"""

import os
import sys
import unittest
from pathlib import Path

from toy import Toy


class ClangTest(Toy):
    source = Path(sys.argv[1])

    def newest_of(self, *installed):
        folder = self.root / "programs"
        folder.mkdir()
        for name in installed:
            (folder / name).touch(mode=0o755)
        return self.run_script("scripts/clang", "toy++",
                               env={"PATH": f"{folder}:{os.environ['PATH']}"})

    def test_names_the_newest_by_number(self):
        self.assertEqual(self.newest_of("toy++", "toy++-9", "toy++-14", "toy++-tidy-19"),
                         (0, "toy++-14\n", ""))

    def test_names_the_one_without_a_number_if_there_is_no_other(self):
        self.assertEqual(self.newest_of("toy++"), (0, "toy++\n", ""))

    def test_says_that_there_is_none(self):
        self.assertEqual(self.newest_of("toy++-tidy-19"),
                         (1, "", "clang: toy++ is not installed\n"))


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
