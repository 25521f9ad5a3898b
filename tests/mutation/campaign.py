"""Mutates the code, one change at a time, and reports the changes that no test notices.

    campaign.py SOURCE FOLDER [--survivors] [--sample N] [--seed S] [PATTERN...]

SOURCE is the checkout, which stays as it is; FOLDER is built in. With patterns only those files are
tried, with --survivors only what survived the last time, with --sample only N mutants at random.
"""

import argparse
import json
import os
import sys
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

from equivalents import Equivalents
from mutants import sampled
from mutated_tree import BuildFailed, MutatedTree
from report import PLANTED, Report, matches
from tests_of_tree import BaselineFailed, Tests

HERE = Path(__file__).resolve().parent
FILES = (
    "QosOpenConfig/*.h", "QosOpenConfig/*.cpp", "platform/Acl/*.h", "platform/Acl/*.cpp",
    "platform/Qos*.h", "platform/Qos*.cpp", "platform/Orin/Node.*", "platform/Orin/Ptr.h",
    "platform/Orin/Publisher.*", "platform/Orin/RefCount.h", "platform/Orin/Vector.h",
    "platform/Orin/WalkList.*", "platform/Vex/*.h", "platform/Vex/Module.cpp",
)
# Text, its form and its traces are not what the machines stand on.
NOT_FILES = ("platform/Vex/Assert.h", "platform/Vex/Errors.h", "platform/Vex/Escape.h",
             "platform/Vex/Trace*.h", "platform/Vex/Row.h", "platform/Vex/Table.h")
TARGETS = (
    "platform_Orin_tests", "platform_Vex_tests", "platform_QosOc_tests", "platform_Plugin_tests",
    "platform_Agent_tests", "platform_Strata_tests", "QosOpenConfig_tests",
)


def files_in(source):
    names = (p.relative_to(source).as_posix() for tree in ("platform", "QosOpenConfig")
             for p in (source / tree).rglob("*"))
    return {name for name in names if matches(name, FILES) and not matches(name, NOT_FILES)}


def built(source, folder):
    planted = {f"platform/Orin/{name}": HERE / name for name in ("Mutant.cpp", "Planted.cpp")}
    runner = folder / "Runner.o"
    tree = MutatedTree(source, folder, files_in(source) | {PLANTED}, planted)
    tree.copy()
    tree.compile(HERE / "Runner.cpp", runner)
    tree.configure(f"-DQOS_TEST_MAIN={runner}")
    tree.find()
    tree.make(TARGETS)
    return tree


def near(file):
    """The executables that are most likely to notice a change of a file."""
    parts = file.split("/")
    return (f"{parts[0]}_tests", f"{'_'.join(parts[:2])}_tests")


def fates(tree, numbers):
    executables = [tree.build / "tests" / target for target in TARGETS]
    tests = Tests(executables, tree.tree)
    tests.record()
    say(f"{len(tests.seconds)} tests pass without a mutant; trying {len(numbers)} mutants")
    with ThreadPoolExecutor(os.cpu_count()) as pool:
        fate = pool.map(lambda n: tests.fate(near(tree.mutants[n].file), n), numbers)
        try:
            return dict(zip(numbers, fate))
        finally:
            tests.close()


def say(text):
    print(f"mutation: {text}", file=sys.stderr, flush=True)


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("source", type=Path)
    parser.add_argument("folder", type=Path)
    parser.add_argument("--survivors", action="store_true")
    parser.add_argument("--sample", type=int, metavar="N", help="only so many mutants, at random")
    parser.add_argument("--seed", type=int, default=1, help="which ones; 1 unless said otherwise")
    parser.add_argument("patterns", nargs="*")
    arguments = parser.parse_args()
    try:
        tree = built(arguments.source.resolve(), arguments.folder.resolve())
        chosen = [n for n, m in tree.mutants.items() if m.file == PLANTED or matches(
            m.file, [f"*{p}*" for p in arguments.patterns or [""]])]
        last = arguments.folder / "survivors.json"
        if arguments.survivors:
            keys = set(json.loads(last.read_text()))
            chosen = [n for n in chosen if tree.mutants[n].key in keys]
        if arguments.sample is not None:
            chosen = sampled({n: tree.mutants[n] for n in chosen}, PLANTED, arguments.sample,
                             arguments.seed)
        fate = [(tree.mutants[n], f) for n, f in fates(tree, chosen).items()]
    except (BuildFailed, BaselineFailed) as fault:
        say(fault)
        return 1
    equivalents = Equivalents.read(HERE / "equivalent.txt")
    last.write_text(json.dumps([m.key for m, f in fate if f != "killed"], indent=1))
    untried = {m.key for m in tree.mutants.values()} - {m.key for m, _ in fate}
    is_whole = not (arguments.patterns or arguments.survivors or arguments.sample)
    report = Report(fate, equivalents, is_whole, untried)
    print("\n".join(report.text()))
    faults = list(report.faults())
    for fault in faults:
        say(fault)
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
