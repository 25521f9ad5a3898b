#!/usr/bin/env python3
"""Holds what scripts/bench says of figures to what they are.

    bench_test.py SOURCE
"""

import sys
import unittest
from pathlib import Path

SOURCE = Path(sys.argv[1])
sys.path.insert(0, str(SOURCE / "bench/runner"))
import counting  # noqa: E402
import figures as figures_of  # noqa: E402

ANNOTATED = """\
--------------------------------------------------------------------------------
Ir
--------------------------------------------------------------------------------
1,000 (100.0%)  PROGRAM TOTALS

--------------------------------------------------------------------------------
Ir            file:function
--------------------------------------------------------------------------------
  600 (60.00%)  ./agent/json/Json.cpp:QosAgent::parse(char const*) [/lib/agent.so]
  300 (30.00%)  ???:malloc [/lib/libc.so]
  100 (10.00%)  ./agent/a.cpp:QosAgent::parse(char const*) [/lib/agent.so]
"""
HEADER = "figure\tgoal\taim\treason\n"


def costing(*costs):
    figures = figures_of.Figures()
    for name, cost in costs:
        figures.at("group", name, 10).cost["ours"] = cost
    return figures


class BenchTest(unittest.TestCase):
    def test_counts_functions_and_not_the_line_of_the_totals(self):
        self.assertEqual(counting.functions_of(ANNOTATED),
                         {"QosAgent::parse(char const*)": 700, "malloc": 300})

    def test_marks_figures_by_their_goals(self):
        figures = costing(("a", 10), ("b", 11), ("c", 5), ("d", 1))
        goals = figures_of.read_goals(HEADER + "a\t10\t5\nb\t10\t5\nc\t10\t5\nd\t-\t-\twhy not")
        self.assertEqual(figures_of.give_goals(figures, goals), (set(), set()))
        self.assertEqual([figure.mark() for figure in figures.all.values()],
                         ["met", "not met", "aim met", ""])

    def test_gives_slack_to_a_share_of_the_goal(self):
        figures = costing(("at", 100), ("within", 103), ("above", 103.1))
        figures_of.give_goals(figures, figures_of.read_goals(HEADER + "*\t100\t50"))
        self.assertEqual([(figure.exceeds(), figure.exceeds(0.03))
                          for figure in figures.all.values()],
                         [(False, False), (True, False), (True, True)])

    def test_tells_which_figures_and_which_goals_stand_alone(self):
        goals = figures_of.read_goals(HEADER + "# a comment\nknown *\t1\t1\nunused\t1\t1")
        self.assertEqual(figures_of.give_goals(costing(("known one", 1), ("new", 1)), goals),
                         ({"unused"}, {"new"}))

    def test_asks_for_a_reason_where_there_is_no_goal(self):
        with self.assertRaisesRegex(ValueError, "^a has neither a goal nor a reason why not$"):
            figures_of.read_goals(HEADER + "a\t-\t-\t")

    def test_every_goal_of_the_project_has_an_aim_below_it(self):
        for name, limits in figures_of.read_goals(figures_of.GOALS.read_text()).items():
            with self.subTest(name):
                self.assertTrue(limits is None or limits[1] <= limits[0])


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
