#!/usr/bin/env python3
"""Tells a story with wrong endings, and expects each to be reported.

usage: run_example_test.py PROGRAM STORY
"""

import os
import shutil
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

PROGRAM, STORY = sys.argv[1], Path(sys.argv[2])
RUN_EXAMPLE = Path(__file__).with_name("run_example.py")


class RunExampleTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.story = Path(folder.name) / "story"
        shutil.copytree(STORY, self.story)

    def account(self):
        """The runner's status, and what it says."""
        environment = {name: value for name, value in os.environ.items()
                       if name != "UPDATE_EXPECTED"}
        done = subprocess.run([sys.executable, "-B", RUN_EXAMPLE, PROGRAM, self.story],
                              capture_output=True, text=True, env=environment, check=False)
        return done.returncode, done.stdout

    def edit(self, file, change):
        path = self.story / file
        path.write_text(change(path.read_text(encoding="utf-8")), encoding="utf-8")

    def test_passes_the_story_as_it_is(self):
        self.assertEqual(self.account(), (0, ""))

    def test_reports_a_line_that_differs(self):
        self.edit("expected.txt", lambda text: text.replace("EF", "AF4", 1))
        status, said = self.account()
        self.assertEqual(status, 1)
        self.assertRegex(said, r'(?m)^-.*AF4.*\n\+.*EF')

    def test_reports_a_line_that_is_missing(self):
        self.edit("expected.txt", lambda text: text + "one more\n")
        status, said = self.account()
        self.assertEqual(status, 1)
        self.assertIn("\n-one more\n", said)

    def test_reports_a_change_that_is_refused(self):
        self.edit("changes.jsonl", lambda text: text + "{}\n")
        status, said = self.account()
        self.assertEqual(status, 1)
        self.assertIn("no operation", said)

    def test_reports_trace_lines_that_differ(self):
        (self.story / "expected-trace.txt").write_text("nothing\n", encoding="utf-8")
        status, said = self.account()
        self.assertEqual(status, 1)
        self.assertIn("\n-nothing\n", said)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
