#!/usr/bin/env python3
"""Holds the manual page and the completion to what the program's --help says.

    command_line_test.py PROGRAM SOURCE
"""

import re
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

PROGRAM = sys.argv[1]
SOURCE = Path(sys.argv[2])
COMPLETION = SOURCE / "packaging/qos-agent.bash"
FORMATS = {"table", "openconfig", "entities", "none"}

#: Completes the last of the words, in a shell that is in no completion.
COMPLETE = """
compopt() { :; }
source "$1"; shift
COMP_WORDS=("$@") COMP_CWORD=$(($# - 1))
_qos_agent qos-agent "${@: -1}" "${@: -2:1}"
printf '%s\\n' "${COMPREPLY[@]}"
"""


def options_of_help():
    text = subprocess.run([PROGRAM, "--help"], capture_output=True, text=True, check=True).stdout
    listed = text.split("Options:\n", 1)[1].split("\n\n", 1)[0]
    return set(re.findall(r"(?m)^  (?:-\w,)?(--[\w-]+)", listed))


def completed(*words, folder=None):
    out = subprocess.run(["bash", "-c", COMPLETE, "bash", COMPLETION, "qos-agent", *words],
                         capture_output=True, text=True, check=True, cwd=folder).stdout
    return set(out.split())


class CommandLineTest(unittest.TestCase):
    def setUp(self):
        self.options = options_of_help()

    def test_help_lists_options(self):
        self.assertIn("--follow", self.options)
        self.assertGreaterEqual(len(self.options), 10)

    def test_manual_describes_each_option_and_no_other(self):
        page = (SOURCE / "packaging/qos-agent.1").read_text()
        described = re.findall(r"(?m)^\.It (?:Fl h , )?Fl Fl ([\w-]+)", page)
        self.assertEqual({f"--{name}" for name in described}, self.options)
        synopsis = page.split(".Sh SYNOPSIS", 1)[1].split(".Sh", 1)[0]
        self.assertEqual({f"--{name}" for name in re.findall(r"Fl Fl ([\w-]+)", synopsis)},
                         self.options)

    def test_manual_names_each_format(self):
        page = (SOURCE / "packaging/qos-agent.1").read_text()
        item = page.split(".It Fl Fl output", 1)[1].split(".It", 1)[0]
        self.assertEqual(set(re.findall(r"(?m)^\.Cm (\w+)", item)), FORMATS)

    def test_lines_that_pages_feed_to_the_service_publish_something(self):
        for page in ("packaging/qos-agent.1", "docs/operating.md"):
            text = (SOURCE / page).read_text().replace(r"\-", "-")
            lines = re.findall(r"echo '(\{.*\})' > /run/", text)
            self.assertTrue(lines, page)
            for line in lines:
                run = subprocess.run([PROGRAM, "--follow=json", "--output", "none", "-"],
                                     input=line, capture_output=True, text=True, check=True)
                self.assertIn('{"update":', run.stdout, page)

    def test_completion_knows_each_option_and_no_other(self):
        self.assertEqual(completed("--"), self.options)
        self.assertEqual(completed("--fo"), {"--follow"})

    def test_completion_knows_each_format(self):
        self.assertEqual(completed("--output", ""), FORMATS)
        self.assertEqual(completed("--output", "="), FORMATS)
        self.assertEqual(completed("--output", "=", "ta"), {"table"})

    def test_completion_knows_each_form_of_followed_changes(self):
        self.assertEqual(completed("--follow", "="), {"json", "text"})
        self.assertEqual(completed("--follow", "=", "te"), {"text"})

    def test_completion_knows_what_files_an_argument_names(self):
        with tempfile.TemporaryDirectory() as folder:
            for name in ("a.json", "b.jsonl", "c.txt", "d.so"):
                Path(folder, name).touch()
            Path(folder, "e").mkdir()
            self.assertEqual(completed("", folder=folder), {"a.json", "b.jsonl", "e"})
            self.assertEqual(completed("--follow", "", folder=folder), {"a.json", "b.jsonl", "e"})
            self.assertEqual(completed("--plugin", "", folder=folder), {"d.so", "e"})
            self.assertEqual(completed("--toggle-dir", "", folder=folder), {"e"})
            self.assertEqual(completed("--trace-file", "c", folder=folder), {"c.txt"})
            self.assertEqual(completed("--trace", "", folder=folder), set())
            self.assertEqual(completed("--explain", "", folder=folder), set())


class PagesTest(unittest.TestCase):
    """What the manual pages show, handed to the program."""

    def setUp(self):
        self.page = (SOURCE / "packaging/qos-agent-stream.5").read_text()

    def published(self, stream):
        done = subprocess.run([PROGRAM, "--follow", "--output", "none", "-"], input=stream,
                              capture_output=True, text=True, check=False)
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        return done.stdout

    def test_examples_of_streams_publish_a_term(self):
        examples = re.findall(r"(?s)\.Bd -literal\n(.*?)\.Ed", self.page)
        self.assertEqual(len(examples), 2)
        for example in examples:
            self.assertRegex(self.published(example), '"update":.*"dscp":46')

    def test_the_example_of_the_service_publishes_a_classifier(self):
        page = (SOURCE / "packaging/qos-agent.1").read_text()
        line = re.search(r"# echo '(.*)' > /run/qos-agent/changes", page)[1]
        self.assertIn("/classifier/voice/state", self.published(line))

    def test_stream_page_describes_each_operation_and_no_other(self):
        described = set(re.findall(r"(?m)^\.It Brq \\\(dq(\w+)", self.page))
        listed = (SOURCE / "docs/agent.md").read_text().split("## Change streams", 1)[1]
        self.assertEqual(described, set(re.findall(r'(?m)^\| `\{"(\w+)"', listed)))


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
