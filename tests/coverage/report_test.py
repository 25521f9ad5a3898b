#!/usr/bin/env python3
"""Reports made-up counts of a small tree."""

import contextlib
import io
import json
import tempfile
import unittest
from pathlib import Path

import report

TEXT = """template <class T>
int f(T a) {
    if (a) return 1;
    return 2;
}
constexpr int g(int a) {
    return a + 1;
}
struct S { bool operator==(const S&) const = default; };
void h() { if (raced()) again(); }  // uncovered: only against another thread
void k() {
    while (raced()) {
        again();
    }  // uncovered: only against another thread
}
"""
PLANTED_TEXT = f"{report.PLANTED_LINE}\n"


def function(file, first, last, count, branches=()):
    """Branches are (line, column, end column, times true, times false)."""
    return {"filenames": [file], "regions": [[first, 12, last, 2, count, 0, 0, 0]],
            "branches": [[line, column, line, end, true, false, 0, 0, 4]
                         for line, column, end, true, false in branches]}


class ReportTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.root = Path(folder.name)
        for name, text in (("platform/f.h", TEXT), ("QosOpenConfig/f.h", TEXT),
                           ("agent/f.h", TEXT), (report.PLANTED, PLANTED_TEXT)):
            (self.root / name).parent.mkdir(parents=True, exist_ok=True)
            (self.root / name).write_text(text, encoding="utf-8")

    def reported(self, functions, lines, planted=0):
        """The faults and the printed text; `lines` is count by line of platform/f.h."""
        at = {tree: str(self.root / tree / "f.h") for tree in report.GOALS}
        whole = [function(at[tree], 2, 5, 1, [(3, 9, 10, 1, 1)])
                 for tree in ("QosOpenConfig", "agent")]
        plant = function(str(self.root / report.PLANTED), 1, 1, 1, [(1, 5, 20, planted, 1)])
        counts = {"functions": [*whole, plant, *functions(at["platform"])]}
        lcov = [f"SF:{at[tree]}\nDA:3,1" for tree in ("QosOpenConfig", "agent")]
        lcov += [f"SF:{at['platform']}", *(f"DA:{line},{n}" for line, n in lines.items())]
        files = report.read(self.root, json.loads(json.dumps(counts)), "\n".join(lcov))
        with contextlib.redirect_stdout(io.StringIO()) as out:
            return list(report.faults(files)), out.getvalue()

    def test_sums_the_outcomes_of_all_instantiations(self):
        found, _ = self.reported(lambda f: [function(f, 2, 5, 1, [(3, 9, 10, 1, 0)]),
                                            function(f, 2, 5, 1, [(3, 9, 10, 0, 1)])], {3: 1})
        self.assertEqual(found, [])

    def test_names_an_outcome_that_none_reached(self):
        found, text = self.reported(lambda f: [function(f, 2, 5, 1, [(3, 9, 10, 0, 1)])], {3: 1})
        self.assertIn("platform/f.h:3:9: never true: a\n", text)
        self.assertEqual(found, ["platform: 50.00% reached, the goal is 100%"])

    def test_names_lines_that_none_reached(self):
        found, text = self.reported(lambda f: [function(f, 2, 5, 1, [(3, 9, 10, 1, 1)])],
                                    {3: 1, 4: 0})
        self.assertIn("platform/f.h: lines 4\n", text)
        self.assertEqual(found, ["platform: 50.00% reached, the goal is 100%"])

    def test_leaves_out_what_no_run_can_reach(self):
        found, _ = self.reported(
            lambda f: [function(f, 2, 5, 1, [(3, 9, 10, 1, 1), (9, 12, 20, 0, 0),
                                             (10, 16, 22, 0, 1),
                                             (12, 12, 18, 0, 1)]),
                       function(f, 6, 8, 0)], {3: 1, 6: 0, 7: 0, 9: 0, 10: 0, 13: 0})
        self.assertEqual(found, [])

    def test_counts_a_constexpr_function_that_runs(self):
        found, text = self.reported(
            lambda f: [function(f, 2, 5, 1, [(3, 9, 10, 1, 1)]), function(f, 6, 8, 1)],
            {3: 1, 7: 0})
        self.assertIn("platform/f.h: lines 7\n", text)
        self.assertEqual(found, ["platform: 50.00% reached, the goal is 100%"])

    def test_wants_to_have_found_what_is_planted(self):
        found, _ = self.reported(lambda f: [function(f, 2, 5, 1, [(3, 9, 10, 1, 1)])], {3: 1},
                                 planted=1)
        self.assertEqual(found, [f"{report.PLANTED}: the planted outcome was not found"])


if __name__ == "__main__":
    unittest.main()
