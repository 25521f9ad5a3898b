"""Says which lines and which outcomes of branches the tests did not reach.

    report.py SOURCE BUILD

BUILD was made with counters and its tests have run. What counts is what any instantiation of a
template reached. Fails when a tree is below its goal, and when the branch that is planted in
tests/coverage/WriteOnAbort.cpp is not among what it finds.
"""

import json
import os
import re
import subprocess
import sys
from collections import defaultdict
from pathlib import Path

# Parts of lines and of outcomes, of which each tree is to reach so many.
GOALS = {"QosOpenConfig": 1.0, "platform": 1.0, "agent": 0.95}
PLANTED = "tests/coverage/WriteOnAbort.cpp"
PLANTED_LINE = "if (next == SIG_ERR) std::abort();"

SETTLED = re.compile(r"\b(?<!if )(?:constexpr|consteval)\b[^;{}]*\)[^;{}]*\{")
WRITTEN_BY_COMPILER = re.compile(r"= default;")
UNCOVERED = re.compile(r"// uncovered: \S")


class File:
    """The counts of one file, summed over instantiations and programs."""

    def __init__(self, text):
        self.text = text.splitlines()
        self.functions = defaultdict(int)  # (line, column, end line) -> calls
        self.lines = {}  # line -> count
        self.outcomes = defaultdict(int)  # (line, column, end column, which) -> count

    def excluded(self):
        """Lines that cannot be reached when the program runs."""
        lines = {n for n, line in enumerate(self.text, start=1) if WRITTEN_BY_COMPILER.search(line)}
        for last, line in enumerate(self.text, start=1):
            if UNCOVERED.search(line):
                lines.update(range(self.opening(last), last + 1))
        for first, last in self.settled():
            if not any(calls for (line, _, end), calls in self.functions.items()
                       if first <= line and end <= last):
                lines.update(range(first, last + 1))
        return lines

    def opening(self, last):
        """The first line of the block that ends in a line; itself where none does."""
        closing = re.match(r" *(?=})", self.text[last - 1])
        if closing is None:
            return last
        return next(n for n in range(last - 1, 0, -1)
                    if re.match(closing.group() + r"\S", self.text[n - 1]))

    def settled(self):
        """First and last line of each function that the compiler may have run already."""
        text = "\n".join(self.text)
        for match in SETTLED.finditer(text):
            depth, at = 1, match.end()
            while depth:
                depth += {"{": 1, "}": -1}.get(text[at], 0)
                at += 1
            yield text.count("\n", 0, match.start()) + 1, text.count("\n", 0, at) + 1

    def missed_lines(self):
        excluded = self.excluded()
        return [n for n, count in sorted(self.lines.items()) if count == 0 and n not in excluded]

    def missed_outcomes(self):
        excluded = self.excluded()
        return [place for place, count in sorted(self.outcomes.items())
                if count == 0 and place[0] not in excluded]

    def totals(self):
        """(lines reached, lines, outcomes reached, outcomes)"""
        excluded = self.excluded()
        lines = sum(n not in excluded for n in self.lines)
        outcomes = sum(place[0] not in excluded for place in self.outcomes)
        return (lines - len(self.missed_lines()), lines,
                outcomes - len(self.missed_outcomes()), outcomes)


def newest(program):
    script = Path(__file__).resolve().parents[2] / "scripts/clang"
    return subprocess.run([script, program], check=True, capture_output=True,
                          text=True).stdout.strip()


def measured(source, build):
    """The files of the tree by name."""
    profile = build / "tests.profdata"
    subprocess.run([newest("llvm-profdata"), "merge", "-sparse", "-o", profile,
                    *(build / "profiles").glob("*.profraw")], check=True)
    binaries = [*sorted((build / "bin").glob("*.so")), build / "bin/qos-agent",
                *sorted((build / "tests").glob("*_tests"))]
    objects = [binaries[0], *(f"--object={b}" for b in binaries[1:])]
    options = [*objects, f"--instr-profile={profile}"]
    trees = [source / tree for tree in (*GOALS, "tests/coverage")]
    counts = json.loads(llvm_cov(["export", *options, *trees]))["data"][0]
    lines = llvm_cov(["export", "--format=lcov", "--skip-functions", *options, *trees])
    llvm_cov(["show", "--format=html", f"--output-dir={build / 'html'}", "--show-branches=count",
              *options, *trees[:-1]])
    return read(source, counts, lines)


def llvm_cov(arguments):
    return subprocess.run([newest("llvm-cov"), *arguments], check=True, stdout=subprocess.PIPE,
                          stderr=subprocess.DEVNULL, text=True).stdout


def read(source, counts, lcov):
    files = {}

    def file_at(path):
        name = os.path.relpath(os.path.normpath(path), source)
        if not name.startswith((*(f"{tree}/" for tree in GOALS), PLANTED)):
            return None
        return files.setdefault(name, File((source / name).read_text(encoding="utf-8")))

    for function in counts["functions"]:
        line, column, end, _, count, *_ = function["regions"][0]
        if file := file_at(function["filenames"][0]):
            file.functions[line, column, end] += count
        for *place, end_column, true, false, at, _, _ in function["branches"]:
            if file := file_at(function["filenames"][at]):
                file.outcomes[place[0], place[1], end_column, "true"] += true
                file.outcomes[place[0], place[1], end_column, "false"] += false
    file = None
    for entry in lcov.splitlines():
        kind, _, rest = entry.partition(":")
        if kind == "SF":
            file = file_at(rest)
        elif kind == "DA" and file:
            line, count = rest.split(",")
            file.lines[int(line)] = file.lines.get(int(line), 0) + int(count)
    return files


def ranges(numbers):
    """1, 2, 3, 7 as 1-3, 7."""
    runs = []
    for number in numbers:
        if runs and number == runs[-1][1] + 1:
            runs[-1][1] = number
        else:
            runs.append([number, number])
    return ", ".join(str(a) if a == b else f"{a}-{b}" for a, b in runs)


def misses(name, file):
    if lines := file.missed_lines():
        yield f"{name}: lines {ranges(lines)}"
    for line, column, end, which in file.missed_outcomes():
        yield (f"{name}:{line}:{column}: never {which}: "
               f"{file.text[line - 1][column - 1:end - 1] or file.text[line - 1].strip()}")


def faults(files):
    """The report on standard output; yields what makes it fail."""
    for name, file in sorted(files.items()):
        if name != PLANTED:
            for miss in misses(name, file):
                print(miss)
    print(f"\n{'tree':16}{'lines':>8}{'reached':>9}{'outcomes':>10}{'reached':>9}")
    for tree, goal in GOALS.items():
        each = [f.totals() for name, f in files.items() if name.startswith(f"{tree}/")]
        hit_lines, lines, hit_outcomes, outcomes = (sum(column) for column in zip(*each))
        parts = hit_lines / lines, hit_outcomes / outcomes
        print(f"{tree:16}{lines:8}{parts[0]:9.2%}{outcomes:10}{parts[1]:9.2%}")
        if min(parts) < goal:
            yield f"{tree}: {min(parts):.2%} reached, the goal is {goal:.0%}"
    planted = files.get(PLANTED)
    found = planted and {planted.text[line - 1].strip() for line, *_ in planted.missed_outcomes()}
    if not found or PLANTED_LINE not in found:
        yield f"{PLANTED}: the planted outcome was not found"


def main():
    source, build = (Path(argument).resolve() for argument in sys.argv[1:3])
    found = list(faults(measured(source, build)))
    print(f"\nEach line with its counts: {build / 'html' / 'index.html'}")
    for fault in found:
        print(f"coverage: {fault}", file=sys.stderr)
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
