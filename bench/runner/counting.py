"""Counts, times and weighs what bench/Groups.h lists, by the programs qos_count and qos_time."""

import json
import os
import re
import subprocess
import sys
import tempfile
from collections import Counter, defaultdict
from pathlib import Path

NOTHING = "nothing"
SAME_HASHES = {"QOS_HASH_SEED": "1"}  # so that each run counts the same


def output(*command):
    return subprocess.run(command, check=True, stdout=subprocess.PIPE, text=True).stdout


# Counting

def dumps(folder):
    """The instructions of each dump in the folder, and its file, by name."""
    found = {}
    for path in folder.glob("counts.*"):
        text = path.read_text()
        if name := re.search(r"^desc: Trigger: Client Request: (.*)$", text, re.M):
            found[name[1]] = int(re.search(r"^totals: (\d+)$", text, re.M)[1]), path
    return found


def run_counted(programs, group, size, folder):
    with open(folder / "log", "w+", encoding="utf-8") as log:
        done = subprocess.run(
            ["valgrind", "--tool=callgrind", "--instr-atstart=no", "--collect-atstart=no",
             f"--callgrind-out-file={folder}/counts", programs / "qos_count", group, str(size)],
            stdout=subprocess.PIPE, stderr=log, text=True,
            env={**os.environ, **SAME_HASHES})
        if done.returncode != 0:
            log.seek(0)
            sys.exit(log.read())
    return done.stdout


def count(figures, programs, group, size, where):
    with tempfile.TemporaryDirectory() as name:
        folder = Path(name)
        out = run_counted(programs, group, size, folder)
        dumped = dumps(folder)
        if where and f"ours|{where}" in dumped:
            print_functions(dumped[f"ours|{where}"][1])
    rows = [line.split("\t")[1:] for line in out.splitlines()]
    per_run = {(row[0], row[1]): dumped[f"{row[0]}|{row[1]}"][0] / int(row[3]) for row in rows}
    bases = {row[2] for row in rows if row[2] != NOTHING}
    states = defaultdict(set)
    for side, event, base, *numbers in rows:
        runs, share, heap, slab, state = map(int, numbers)
        if event == NOTHING or (event in bases and base == NOTHING):
            continue  # no figure of its own
        figure = figures.at(group, event, size)
        figure.cost[side] = (per_run[side, event] - per_run[side, base]) / share
        figure.heap[side], figure.slab[side] = heap / runs, slab / runs
        states[event].add(state)
    for event, different in states.items():
        if len(different) > 1:
            sys.exit(f"bench: {event}, at {size}: the floor's states are not ours")


def functions_of(annotated):
    """The instructions of each function, from what callgrind_annotate prints."""
    counted = Counter()
    # Functions stand behind their file; the line of the totals names neither.
    for cost, function in re.findall(
            r"^\s*([\d,]+) \([ \d.]+%\)\s+(?!PROGRAM TOTALS)[^:\n]*:(.*?)(?: \[.*\])?$", annotated,
            re.M):
        counted[function] += int(cost.replace(",", ""))
    return counted


def print_functions(dump):
    """Where the instructions went, by function."""
    counted = functions_of(output("callgrind_annotate", "--auto=no", "--threshold=100", str(dump)))
    for function, cost in counted.most_common(40):
        print(f"{100 * cost / counted.total():5.1f}%  {function}")


# Timing, weighing, looking

def time(figures, programs, group, size):
    report = json.loads(output(programs / "qos_time", group, str(size), "--benchmark_format=json",
                               "--benchmark_min_time=0.05"))
    timed = {tuple(run["name"].split("/")[:2]): run for run in report["benchmarks"]}
    scale = {"ns": 1, "us": 1e3, "ms": 1e6}
    for (side, event), run in timed.items():
        if (group, event, size) not in figures.all:
            continue
        # Both are the processor's time: what is timed by hand goes by the name of real time.
        clock, base = (("real_time", "clock") if "manual_time" in run["name"] else
                       ("cpu_time", "loop"))
        own = run[clock] * scale[run["time_unit"]]
        if run["iterations"] > 1:
            own -= timed[side, base][clock]
        figures.at(group, event, size).nanoseconds[side] = max(own, 0) / run["share"]


def weigh(figures, programs, size):
    for line in output(programs / "qos_count", "memory", str(size)).splitlines():
        _, side, what, weight = line.split("\t")
        figures.at("memory", what, size, unit="bytes").cost[side] = float(weight)


def look_at_traces(figures, programs):
    """The functions that write trace lines lie apart from the hot code, and need no guard."""
    objects = (programs.parent / "QosOpenConfig").rglob("*.o")
    symbols = output("objdump", "--syms", "--demangle", *objects).splitlines()
    writing = [line for line in symbols if " F " in line and "Vex::writeTrace<" in line]
    if not writing:
        sys.exit("bench: found no function that writes trace lines")
    hot = sum(".text.unlikely" not in line for line in writing)
    guards = sum("guard variable for" in line and "trace" in line.lower() for line in symbols)
    for name, number in (("trace functions outside cold sections", hot),
                         ("guard variables for tracing", guards)):
        figures.at("primitives", name, "", unit="number").cost["ours"] = number
