#!/usr/bin/env python3
"""Checks that README.md shows what ./run begins with: its first announcement, and what qos-agent
prints for it.

usage: readme_test.py PROGRAM PROJECT_FOLDER
"""
import pathlib
import re
import subprocess
import sys
import textwrap


def main():
    program, project = pathlib.Path(sys.argv[1]).resolve(), pathlib.Path(sys.argv[2])
    first = re.search(r'^echo "(== .*)"\n"\$agent" (.*)$', (project / "run").read_text(), re.M)
    command = [program, *first[2].split()]
    run = subprocess.run(command, cwd=project / "examples", stdin=subprocess.DEVNULL,
                         capture_output=True, text=True, check=True)
    printed = f"{first[1]}\n{run.stdout}"
    shown = textwrap.indent(printed, "    ")
    if printed.count("\n") > 5 and shown in (project / "README.md").read_text():
        return 0
    print("README.md does not show this:", printed, sep="\n")
    return 1


sys.exit(main())
