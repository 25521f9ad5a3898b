#!/usr/bin/env python3
"""Tells the story of examples/service, and compares what it prints with story.txt there.

    service_story_test.py PROGRAM FOLDER

With UPDATE_EXPECTED=1 in the environment, writes the file instead.
"""
import difflib
import os
import pathlib
import subprocess
import sys

program, folder = pathlib.Path(sys.argv[1]), pathlib.Path(sys.argv[2])
environment = {**os.environ, "PATH": f"{program.parent}:{os.environ['PATH']}"}
told = subprocess.run([folder / "story.sh"], capture_output=True, text=True, env=environment,
                      timeout=100)
expected = folder / "story.txt"
if os.environ.get("UPDATE_EXPECTED"):
    expected.write_text(told.stdout)
differences = list(difflib.unified_diff(expected.read_text().splitlines(),
                                        told.stdout.splitlines(), "story.txt", "told", lineterm=""))
if told.returncode != 0 or told.stderr or differences:
    print(f"exit status {told.returncode}", told.stderr, *differences, sep="\n")
    sys.exit(1)
