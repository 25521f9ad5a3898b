#!/usr/bin/env python3
"""Runs qos-agent on an example folder and compares what it prints with the folder's expected.txt.

usage: run_example.py PROGRAM FOLDER
A folder holds documents (*.json), a change stream (changes.jsonl), and expected.txt. With
UPDATE_EXPECTED=1 in the environment the file is written instead of compared.
"""
import difflib
import os
import pathlib
import subprocess
import sys


def main():
    program, folder = sys.argv[1], pathlib.Path(sys.argv[2])
    inputs = sorted(folder.glob("*.json")) + sorted(folder.glob("*.jsonl"))
    command = [program, "--follow", "--output", "table", "--trace-file", os.devnull]
    run = subprocess.run(command + inputs, stdin=subprocess.DEVNULL, capture_output=True, text=True)
    expected = folder / "expected.txt"
    if os.environ.get("UPDATE_EXPECTED"):
        expected.write_text(run.stdout)
    difference = list(difflib.unified_diff(
        expected.read_text().splitlines(), run.stdout.splitlines(), str(expected), "printed",
        lineterm=""))
    if run.returncode != 0 or run.stderr or difference:
        print(f"exit status {run.returncode}", run.stderr, *difference, sep="\n")
        return 1
    return 0


sys.exit(main())
