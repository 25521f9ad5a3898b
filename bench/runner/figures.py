"""Figures, what follows from them, and what they may cost."""

from fnmatch import fnmatchcase
from pathlib import Path

GOALS = Path(__file__).resolve().parents[1] / "goals.tsv"
AGAINST = "rules loaded one by one, against tree and hash nodes"
NONE = "-"  # in place of a goal


class Figure:
    """What is known of one figure: its cost by side, and goals where it has some."""

    def __init__(self, group, name, size, unit="instructions"):
        self.group, self.name, self.size, self.unit = group, name, size, unit
        self.cost, self.nanoseconds, self.heap, self.slab = {}, {}, {}, {}
        self.goal = self.aim = None

    def exceeds(self, slack=0):
        """True if the cost is above the goal by more than that share of it."""
        return (self.goal is not None and "ours" in self.cost and
                self.cost["ours"] > self.goal * (1 + slack) + 1e-9)

    def mark(self):
        if self.goal is None or "ours" not in self.cost:
            return ""
        if self.exceeds():
            return "not met"
        return "aim met" if self.cost["ours"] <= self.aim + 1e-9 else "met"


class Figures:
    def __init__(self):
        self.all = {}

    def at(self, group, name, size, **unit):
        return self.all.setdefault((group, name, size), Figure(group, name, size, **unit))

    def costs(self, group, side):
        """By name and size."""
        return {(figure.name, figure.size): figure.cost[side] for figure in self.all.values()
                if figure.group == group and side in figure.cost}


# What follows from other figures

def growth(figures, name, group, side, small, large):
    """The greatest growth of a cost between two sizes."""
    costs = figures.costs(group, side)
    growths = [cost / costs[event, small] for (event, size), cost in costs.items()
               if size == large and costs.get((event, small))]
    if growths:
        figures.at(group, name, "", unit="ratio").cost[side] = max(growths)


def derive_allocations(figures, side):
    heap = [figure.heap[side] for figure in figures.all.values()
            if figure.group == "events" and side in figure.heap]
    if heap:
        figures.at("events", "heap allocations of an event, the most", "",
                   unit="number").cost[side] = max(heap)


def derive_start(figures, side):
    starts = figures.costs("starts", side)
    ends = [starts.get(("start, a machine", size)) for size in (1000, 100000)]
    if all(ends):
        figures.at("starts", "start, a machine, at 100,000 against 1,000", "",
                   unit="ratio").cost[side] = ends[1] / ends[0]


def derive_rates(figures, figure):
    figures.at("documents", figure.name.replace(", a term", ", terms a second"), figure.size,
               unit="number").cost["ours"] = round(1e9 / figure.nanoseconds["ours"])


def derive_against_nodes(figures, figure):
    against = figures.at("rules", AGAINST, figure.size, unit="ratio")
    for side in ("ours", "floor"):
        against.cost[side] = figure.cost[side] / figure.cost["nodes"]
        if "nodes" in figure.nanoseconds:
            against.nanoseconds[side] = figure.nanoseconds[side] / figure.nanoseconds["nodes"]


def derive(figures):
    for side in ("ours", "floor"):
        derive_allocations(figures, side)
        growth(figures, "an event at 10,000 against 1,000, the most", "events", side, 1000, 10000)
        growth(figures, "an edit at 80,000 against 1,000, the most", "edits", side, 1000,
               80000)
        growth(figures, "an explanation at 80,000 against 1,000, the most", "explain", side, 1000,
               80000)
        derive_start(figures, side)
    for figure in list(figures.all.values()):
        if figure.group == "documents" and figure.nanoseconds:
            derive_rates(figures, figure)
        if figure.group == "rules" and "nodes" in figure.cost:
            derive_against_nodes(figures, figure)


# Goals

def read_goals(text):
    """By figure, or by a pattern of figures: goal and aim, or none and the reason for that."""
    goals = {}
    lines = [line for line in text.splitlines() if not line.startswith("#")]
    for line in lines[1:]:
        name, goal, aim, *reason = line.split("\t")
        if goal == NONE and not (reason and reason[0]):
            raise ValueError(f"{name} has neither a goal nor a reason why not")
        goals[name] = None if goal == NONE else (float(goal), float(aim))
    return goals


def give_goals(figures, goals):
    """Returns the names in the table that no figure has, and the figures that the table lacks."""
    used, lacking = set(), set()
    for figure in figures.all.values():
        line = next((name for name in goals if fnmatchcase(figure.name, name)), None)
        if line is None:
            lacking.add(figure.name)
            continue
        used.add(line)
        if goals[line] is not None:
            figure.goal, figure.aim = goals[line]
    return goals.keys() - used, lacking
