#!/usr/bin/python3
"""Runs examples/gnmi/watch.py against the agent, and compares what it prints with output.txt there.

    example_test.py PROGRAM

With UPDATE_EXPECTED=1 in the environment, writes the file instead.
"""

import os
import subprocess
import sys

from agent import ROOT, Agent

EXAMPLE = ROOT / "examples/gnmi"

with Agent(sys.argv[1]) as agent:
    printed = subprocess.run([sys.executable, EXAMPLE / "watch.py", agent.address],
                             stdout=subprocess.PIPE, text=True, timeout=60, check=True).stdout
expected = EXAMPLE / "output.txt"
if os.environ.get("UPDATE_EXPECTED"):
    expected.write_text(printed)
if printed != expected.read_text():
    sys.exit(f"expected:\n{expected.read_text()}printed:\n{printed}")
