#!/usr/bin/env python3
"""Runs qos-agent on a story's folder and compares what it prints with what the folder expects.

usage: run_example.py PROGRAM FOLDER
A folder holds documents (*.json), a change stream (changes.jsonl), expected.txt with what the
program prints and, where the trace matters, expected-trace.txt with the trace lines: without
timestamps and addresses, and with N for the line numbers that move with the plug-in's sources.
With UPDATE_EXPECTED=1 in the environment the files are written instead of compared.
"""
import difflib
import os
import pathlib
import re
import subprocess
import sys
import tempfile

# The line numbers that belong to the lines themselves.
FIXED_LINES = {206, 215, 252, 266, 273, 287, 304, 322, 335, 347, 363, 387, 408, 425, 434, 451, 460,
               821, 824, 847, 850, 869, 872, 891, 907}
LINE = re.compile(r"\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d\.\d{6}Z (\w+/\d) ([\w/]+):(\d+) (\w+ )"
                  r"((?:QosOc::\w+@)?0x[0-9a-f]+)?(.*)")


def comparable(line):
    if line.startswith("# "):
        return line
    handle, source, number, function, subject, body = LINE.fullmatch(line).groups()
    number = number if int(number) in FIXED_LINES else "N"
    subject = re.sub("0x[0-9a-f]+", "0xADDRESS", subject or "")
    return f"{handle} {source}:{number} {function}{subject}{body}"


def difference(expected, printed):
    if os.environ.get("UPDATE_EXPECTED"):
        expected.write_text("".join(line + "\n" for line in printed))
    return list(difflib.unified_diff(expected.read_text().splitlines(), printed, str(expected),
                                     "printed", lineterm=""))


def main():
    program, folder = sys.argv[1], pathlib.Path(sys.argv[2])
    inputs = sorted(folder.glob("*.json")) + sorted(folder.glob("*.jsonl"))
    with tempfile.NamedTemporaryFile("r", suffix=".trace") as trace:
        command = [program, "--follow", "--output", "table", "--trace", "*/8", "--trace-file",
                   trace.name]
        run = subprocess.run(command + inputs, stdin=subprocess.DEVNULL, capture_output=True,
                             text=True)
        traced = [comparable(line) for line in trace.read().splitlines()]
    differences = difference(folder / "expected.txt", run.stdout.splitlines())
    if (folder / "expected-trace.txt").exists():
        differences += difference(folder / "expected-trace.txt", traced)
    if run.returncode != 0 or run.stderr or differences or not traced:
        print(f"exit status {run.returncode}", run.stderr, *differences, sep="\n")
        return 1
    return 0


sys.exit(main())
