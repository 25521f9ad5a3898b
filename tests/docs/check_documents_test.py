#!/usr/bin/env python3
"""Plants faults in pages and expects each to be reported, with its place."""

import tempfile
import unittest
from pathlib import Path

import check_documents

PROGRAM = """#!/bin/sh
echo "wired $1"
echo "fault in $1" >&2
"""


class CheckDocumentsTest(unittest.TestCase):
    def faults(self, page):
        """The faults of a page beside a file, in a project whose program prints two lines."""
        with tempfile.TemporaryDirectory() as name:
            project = Path(name)
            for folder in ("docs", "examples/desk", "build"):
                (project / folder).mkdir(parents=True)
            (project / "program").write_text(PROGRAM, encoding="utf-8")
            (project / "program").chmod(0o755)
            (project / "examples/desk/Lamp.h").write_text("one\ntwo\nthree\n", encoding="utf-8")
            (project / "build/other.md").write_text("[x](nowhere)\n", encoding="utf-8")
            (project / "docs/house.md").write_text("# A `Room`, or 2\n", encoding="utf-8")
            (project / "docs/lamp.md").write_text(page, encoding="utf-8")
            return list(check_documents.faults(project / "program", project))

    def assert_reported(self, page, *starts):
        found = self.faults(page)
        self.assertEqual(len(found), len(starts), found)
        for fault, start in zip(found, starts):
            self.assertTrue(fault.startswith(start), fault)

    def console(self, *lines):
        return "\n".join(["text", "```console", *lines, "```", ""])

    def test_passes_what_is_printed(self):
        page = self.console("$ qos-agent lamp", "wired lamp", "fault in lamp", "$ ls", "desk")
        self.assert_reported(page)

    def test_reports_other_output(self):
        page = self.console("$ ls", "desk", "$ qos-agent lamp", "wired lump", "fault in lamp")
        self.assert_reported(page, "docs/lamp.md:5: prints something else: qos-agent lamp\n")

    def test_reports_missing_and_further_lines(self):
        page = self.console("$ qos-agent lamp", "wired lamp")
        self.assert_reported(page, "docs/lamp.md:3: prints something else")
        page = self.console("$ qos-agent lamp", "wired lamp", "fault in lamp", "")
        self.assert_reported(page, "docs/lamp.md:3: prints something else")

    def test_takes_dots_for_any_text(self):
        self.assert_reported(self.console("$ qos-agent lamp", "wi...mp", "..."))
        self.assert_reported(self.console("$ qos-agent lamp", "...", "wi...d"),
                             "docs/lamp.md:3: prints something else")

    def test_runs_commands_of_several_lines(self):
        self.assert_reported(self.console("$ qos-agent \\", ">   lamp 2>&1 | \\", "> head -1",
                                          "wired lamp"))

    def test_reports_a_console_without_a_command(self):
        self.assert_reported(self.console("wired lamp"),
                             "docs/lamp.md:3: a console begins with a command")

    def test_reports_an_excerpt_that_is_not_in_its_file(self):
        self.assert_reported("```cpp examples/desk/Lamp.h\ntwo\nthree\n```\n")
        self.assert_reported("```cpp examples/desk/Lamp.h\ntwo\nfour\n```\n",
                             "docs/lamp.md:2: is not in Lamp.h")
        self.assert_reported("```cpp examples/desk/Lamp.h\nwo\n```\n",
                             "docs/lamp.md:2: is not in Lamp.h")
        self.assert_reported("```cpp examples/Lamp.h\ntwo\n```\n",
                             "docs/lamp.md:2: no such file: Lamp.h")

    def test_reports_links_that_lead_nowhere(self):
        self.assert_reported("[a](house.md#a-room-or-2) [b](../examples) [c](https://x/y) [d](#e)\n"
                             "# e\n")
        self.assert_reported("\n[a](home.md)", "docs/lamp.md:2: leads nowhere: home.md")
        self.assert_reported("[a](house.md#a-room)",
                             "docs/lamp.md:1: no such heading: house.md#a-room")


if __name__ == "__main__":
    unittest.main()
