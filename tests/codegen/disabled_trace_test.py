#!/usr/bin/env python3
"""Holds a disabled trace line against its price: one comparison with memory and one branch.

    disabled_trace_test.py OBJDUMP OBJECT

Exits with 77 where the machine's code cannot be read here, with 1 where the price is higher.
"""

import platform
import re
import subprocess
import sys

SKIPPED = 77
FUNCTIONS = ("tracedPieces", "tracedSubject")
# The byte of level lies in the handle, which the code reaches by its own address.
EXPECTED = (r"cmpb\s.*\(%rip\)", r"ja|jae|jbe|jb", r"ret")
# The frame of the function itself may come with it; a store of a piece may not.
FREE = re.compile(r"endbr64|nop|data16|xchg\s+%ax,%ax|(push|pop)\s+%rax|(sub|add)\s+\$\w+,%rsp")


def instructions(objdump, path, function):
    """The instructions of a function up to its first return, its conditional branches not taken."""
    text = subprocess.run(
        [objdump, "--disassemble=" + function, "--no-show-raw-insn", path],
        check=True, capture_output=True, text=True).stdout
    found = []
    for line in text.splitlines():
        match = re.match(r"\s+[0-9a-f]+:\s+(.*)", line)
        if not match or FREE.match(match.group(1)):
            continue
        found.append(match.group(1).strip())
        if found[-1].startswith("ret"):
            break
    return found


def main(objdump, path):
    if platform.machine() != "x86_64":
        print("the check reads x86_64 code only")
        return SKIPPED
    if not objdump or objdump.endswith("NOTFOUND"):
        print("there is no objdump here")
        return SKIPPED
    faults = 0
    for function in FUNCTIONS:
        code = instructions(objdump, path, function)
        if len(code) != len(EXPECTED) or not all(map(re.match, EXPECTED, code)):
            print(f"{function}: a disabled line costs more than a comparison and a branch:")
            print(*("    " + instruction for instruction in code), sep="\n")
            faults += 1
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
