#!/usr/bin/python3
"""Runs the example client against the agent.

    example_test.py PROGRAM
"""

import subprocess
import sys

from agent import ROOT, Agent

TERM = "/qos/classifiers/classifier[name=edge]/terms/term[id=voice]"
EXPECTED = f"""\
set 46
update {TERM}/state/id voice
update {TERM}/conditions/ipv4/state/dscp 46
set 40
update {TERM}/conditions/ipv4/state/dscp 40
set nothing
delete /qos/classifiers/classifier[name=edge]/terms
"""

with Agent(sys.argv[1]) as agent:
    seen = subprocess.run([sys.executable, ROOT / "examples/gnmi/watch.py", agent.address],
                          stdout=subprocess.PIPE, text=True, timeout=60, check=True).stdout
if seen != EXPECTED:
    sys.exit(f"expected:\n{EXPECTED}seen:\n{seen}")
