#!/usr/bin/env python3
"""Checks that README.md shows what qos-agent prints for the first story.

usage: readme_test.py PROGRAM PROJECT_FOLDER
"""
import pathlib
import subprocess
import sys
import textwrap


def main():
    program, project = sys.argv[1], pathlib.Path(sys.argv[2])
    document = project / "examples/openconfig/configuration.json"
    run = subprocess.run([program, "--output", "table", document], stdin=subprocess.DEVNULL,
                         capture_output=True, text=True, check=True)
    shown = textwrap.indent(run.stdout, "    ")
    if run.stdout.count("\n") > 5 and shown in (project / "README.md").read_text():
        return 0
    print("README.md does not show this:", run.stdout, sep="\n")
    return 1


sys.exit(main())
