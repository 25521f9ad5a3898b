#!/usr/bin/env python3
"""Writes mutants into a small program and runs each; reports made-up fates; reads the equivalents.

    mutation_test.py COMPILER SOURCE
"""

import os
import re
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

import schemata
from equivalents import Equivalents
from mutants import INSERTED, SKIPPED, STATEMENT, TRUTH, VALUE, Mutant, flat, sampled
from report import PLANTED, PLANTED_KILLED, PLANTED_SURVIVORS, Report

HERE = Path(__file__).resolve().parent
TOY = """
#include <cstdio>
struct Box { int* held; };
int value(int a, int b) {
    if (a < b) return a - b;
    if (int* p = b > 9 ? &b : nullptr) return *p;
    return 1;
}
void say(int a) {  // the last
    std::printf("%d ", a);
}
int sign(int a) {
    if (a < 0) return -1; else if (a == 0) return 0;
    for (;;) { if (a > 0) break; a = 7; }
    return a;
}
int main() {
    say(sign(-5) + sign(5));
    say(value(1, 2));
    say(value(4, 2));
    say(value(12, 10));
}
"""


def mutant(operator, level, was, becomes, occurrence=0, **more):
    """A mutant of the toy."""
    start = [m.start() for m in re.finditer(re.escape(was), TOY)][occurrence]
    return Mutant("toy.cpp", "toy", operator, TOY.count("\n", 0, start) + 1, was, becomes, level,
                  ((start, start + len(was), becomes),), **more)


class WrittenMutantsTest(unittest.TestCase):
    """Builds the toy once with all its mutants."""

    MUTANTS = {
        1: (mutant("relational", TRUTH, "a < b", "a >= b"), "4 1 2 2 "),
        2: (mutant("condition", TRUTH, "a < b", "false"), "4 1 1 10 "),
        3: (mutant("arithmetic", VALUE, "a - b", "a + b"), "4 3 1 10 "),
        4: (mutant("constant", VALUE, "9", "10"), "4 -1 1 1 "),
        5: (mutant("call", STATEMENT, 'std::printf("%d ", a)', "void()"), ""),
        6: (mutant("swap", VALUE, "value(12, 10)", "value(10, 12)"), "4 -1 1 -2 "),
        7: (mutant("call", STATEMENT, "say(value(12, 10))", "void()"), "4 -1 1 "),
    }
    OPENING, CLOSING = TOY.index("{  // the last") + 1, TOY.index(") return *p")
    MUTANTS[8] = (Mutant("toy.cpp", "say", "return", 9, "{", "{ return;", INSERTED,
                         ((OPENING, OPENING, "return;"),)), "")
    MUTANTS[9] = (Mutant("toy.cpp", "value", "condition", 6, "p", "false", INSERTED,
                         ((CLOSING, CLOSING, "false", "p"),)), "4 -1 1 1 ")

    MUTANTS[10] = (mutant("skip", SKIPPED, "return -1;", ""), "12 -1 1 10 ")
    MUTANTS[11] = (mutant("string", VALUE, '"%d "', '""'), "")

    FIRST, SECOND = "say(value(1, 2))", "say(value(4, 2))"
    MUTANTS[12] = (Mutant("toy.cpp", "main", "order", 19, FIRST, SECOND, STATEMENT,
                          tuple((TOY.index(here), TOY.index(here) + len(here), other)
                                for here, other in ((FIRST, SECOND), (SECOND, FIRST)))),
                   "4 1 -1 10 ")

    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.TemporaryDirectory()
        cls.written = schemata.write(TOY.encode(), [(n, m) for n, (m, _) in cls.MUTANTS.items()])
        source = Path(cls.folder.name) / "toy.cpp"
        source.write_text(cls.written.text, encoding="utf-8")
        cls.program = Path(cls.folder.name) / "toy"
        subprocess.run([sys.argv[1], "-std=c++20", f"-I{SOURCE}", "-include",
                        HERE / "Mutant.h", source, HERE / "Mutant.cpp", "-o", cls.program], check=True)

    @classmethod
    def tearDownClass(cls):
        cls.folder.cleanup()

    def said(self, number):
        return subprocess.run([self.program], env={"QOS_MUTANT": str(number)}, check=True,
                              capture_output=True, text=True).stdout

    def test_changes_nothing_unless_asked_to(self):
        self.assertEqual(self.said(0), "4 -1 1 10 ")

    def test_makes_the_change_that_is_asked_for(self):
        for number, (mutant_, said) in self.MUTANTS.items():
            with self.subTest(mutant_.key):
                self.assertEqual(self.said(number), said)

    def test_keeps_the_lines_of_the_source(self):
        self.assertEqual(self.written.text.count("\n"), TOY.count("\n"))

    def test_finds_a_mutant_by_its_place(self):
        at = self.written.text.index("static_cast<bool>(a >= b)")
        line = self.written.text.count("\n", 0, at) + 1
        column = at - self.written.text.rindex("\n", 0, at)
        self.assertEqual(self.written.at(line, column), [1])
        self.assertEqual(self.written.in_line(line), [1, 2, 3])


class ReportTest(unittest.TestCase):
    def report(self, fates, listed=(), is_whole=False):
        planted = [(planted_mutant(key), fate) for key, fate in PLANTED_SURVIVORS.items()]
        planted += [(planted_mutant(key), "killed") for key in PLANTED_KILLED]
        return Report([*planted, *fates], Equivalents(dict.fromkeys(listed, "why")), is_whole)

    def test_is_content_when_all_but_the_planted_are_killed(self):
        self.assertEqual(list(self.report([(IN_REGISTRY, "killed")]).faults()), [])

    def test_misses_a_planted_mutant_that_does_not_survive(self):
        planted = [*PLANTED_SURVIVORS, *PLANTED_KILLED]
        report = Report([(planted_mutant(key), "killed") for key in planted], Equivalents({}))
        self.assertEqual(len(list(report.faults())), len(PLANTED_SURVIVORS))

    def test_misses_a_planted_mutant_that_is_not_killed(self):
        report = Report([(planted_mutant(key), fate) for key, fate in PLANTED_SURVIVORS.items()],
                        Equivalents({}))
        self.assertEqual(list(report.faults()),
                         [f"planted mutant not killed: {key}" for key in PLANTED_KILLED])

    def test_wants_few_equivalents_among_all_mutants(self):
        fates = [(IN_REGISTRY, "survived")] + [(ELSEWHERE, "killed")] * 48
        self.assertEqual(list(self.report(fates, [IN_REGISTRY.key], is_whole=True).faults()),
                         ["2.0% listed as equivalent, at most 2% may be"])
        fates.append((ELSEWHERE, "killed"))
        self.assertEqual(list(self.report(fates, [IN_REGISTRY.key], is_whole=True).faults()), [])

    def test_wants_every_call_of_the_strict_files_killed(self):
        report = self.report([(IN_REGISTRY, "survived")] + [(ELSEWHERE, "killed")] * 99)
        self.assertEqual(list(report.faults()), ["1 survivors where none may be (marked !)"])

    def test_wants_most_of_all_mutants_killed(self):
        report = self.report([(ELSEWHERE, "survived")] * 6 + [(ELSEWHERE, "killed")] * 94)
        self.assertEqual(list(report.faults()), ["94.0% killed, the goal is 95%"])

    def test_does_not_count_equivalents(self):
        report = self.report([(IN_REGISTRY, "survived")], [IN_REGISTRY.key])
        self.assertEqual(list(report.faults()), [])

    def test_names_equivalents_that_are_killed(self):
        report = self.report([(IN_REGISTRY, "killed")], [IN_REGISTRY.key])
        self.assertEqual(list(report.faults()),
                         [f"listed as equivalent, but killed or gone: {IN_REGISTRY.key}"])

    def test_does_not_miss_an_equivalent_that_was_not_tried(self):
        fates = [(planted_mutant(key), fate) for key, fate in PLANTED_SURVIVORS.items()]
        fates += [(planted_mutant(key), "killed") for key in PLANTED_KILLED]
        fates.append((planted_mutant(f"{IN_REGISTRY.file} h call: g() -> nothing"), "killed"))
        equivalents = Equivalents({IN_REGISTRY.key: "why"})
        self.assertEqual(list(Report(fates, equivalents, untried={IN_REGISTRY.key}).faults()), [])
        self.assertEqual(list(Report(fates, equivalents).faults()),
                         [f"listed as equivalent, but killed or gone: {IN_REGISTRY.key}"])


class SampleTest(unittest.TestCase):
    def setUp(self):
        self.mutants = {n: planted_mutant(f"a.cpp f{n} call: g() -> nothing") for n in range(100)}

    def sample(self, count, seed):
        return sampled(self.mutants, PLANTED, count, seed)

    def test_has_as_many_as_asked_for(self):
        self.assertEqual(len(set(self.sample(30, 1))), 30)
        self.assertEqual(set(self.sample(1000, 1)), set(range(100)))

    def test_is_the_same_for_the_same_seed_alone(self):
        self.assertEqual(self.sample(30, 1), self.sample(30, 1))
        self.assertNotEqual(set(self.sample(30, 1)), set(self.sample(30, 2)))

    def test_has_all_that_is_planted(self):
        planted = dict(self.mutants)
        planted[7] = planted_mutant(next(iter(PLANTED_SURVIVORS)))
        self.assertIn(7, sampled(planted, PLANTED, 0, 1))


class EquivalentsTest(unittest.TestCase):
    def read(self, text):
        with tempfile.NamedTemporaryFile("w", suffix=".txt") as file:
            file.write(text)
            file.flush()
            return Equivalents.read(Path(file.name)).reasons

    def test_share_the_reason_below_them(self):
        self.assertEqual(self.read("# why\na\nb\n  for\n  speed\nc\n  alike\n"),
                         {"a": "for speed ", "b": "for speed ", "c": "alike "})

    def test_are_refused_without_a_reason_and_twice(self):
        for text in ("a\n  why\nb\n", "a\n  why\na\n  again\n"):
            with self.subTest(text), self.assertRaises(ValueError):
                self.read(text)

    def test_are_of_text_that_is_there(self):
        for key in Equivalents.read(HERE / "equivalent.txt").reasons:
            with self.subTest(key):
                file, _, rest = key.partition(" ")
                was = rest.partition(": ")[2].partition(" -> ")[0]
                text = flat((SOURCE / file).read_text(encoding="utf-8"))
                self.assertTrue(was in text, f"{file} has no {was}")


def planted_mutant(key):
    file, function, rest = key.split(" ", 2)
    operator, _, change = rest.partition(": ")
    was, becomes = change.split(" -> ")
    return Mutant(file, function, operator, 1, was, becomes, VALUE, ())


IN_REGISTRY = planted_mutant("platform/Vex/Module.cpp f call: g() -> nothing")
ELSEWHERE = planted_mutant("platform/Orin/Vector.h f call: g() -> nothing")

if __name__ == "__main__":
    SOURCE = Path(sys.argv[2])
    os.environ.pop("QOS_MUTANT", None)
    unittest.main(argv=sys.argv[:1])
