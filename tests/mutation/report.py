"""What became of the mutants, and whether that is good enough."""

import fnmatch
from collections import Counter

# Here each of these mutants is to be killed, not only most.
STRICT_FILES = (
    "QosOpenConfig/*/StatePlace.h", "QosOpenConfig/*/StateWriter.*", "QosOpenConfig/*/ClassifiersWithPmap.*",
    "platform/Vex/Module.*", "platform/Orin/Publisher.*", "platform/Vex/Attribute.h",
    "platform/Vex/NotifieeConst.h", "platform/Vex/PublishingNode.h", "platform/Vex/Reactor.h",
    "platform/Vex/Watched.h",
)
STRICT_OPERATORS = ("relational", "logical", "call")
LEAST_KILLED = 0.95
# Of all mutants; what changes nothing is code without effect, or a test that is missing.
MOST_EQUIVALENT = 0.02

PLANTED = "platform/Orin/Planted.cpp"
PLANTED_SURVIVORS = {
    f"{PLANTED} distance relational: a < b -> a <= b": "survived",
    f"{PLANTED} uncalled arithmetic: a * 2 -> a / 2": "unreached",
}
PLANTED_KILLED = (
    f"{PLANTED} twiceAndOne order: a *= 2; a += 1 -> a += 1; a *= 2",
    f"{PLANTED} wayOut throw: throw a -> nothing",
    f"{PLANTED} wayOut skip: break; -> nothing",
    f"{PLANTED} wayOut skip: return \"return\"; -> nothing",
    f'{PLANTED} wayOut string: "end" -> ""',
)


def matches(name, patterns):
    return any(fnmatch.fnmatch(name, pattern) for pattern in patterns)


class Report:
    """What became of the mutants, and whether that is good enough."""

    def __init__(self, fate, equivalents, is_whole=False, untried=()):
        """`fate` is a list of (Mutant, what became of it), of all mutants if `is_whole`; `untried`
        are the keys of those that were made and not tried."""
        self.is_whole = is_whole
        self.planted = [(m, f) for m, f in fate if m.file == PLANTED]
        counted = [(m, f) for m, f in fate if m.file != PLANTED]
        self.stale = equivalents.stale(counted, untried)
        self.equivalent = [m for m, f in counted if f != "killed" and m.key in equivalents]
        self.counted = [(m, f) for m, f in counted if f == "killed" or m.key not in equivalents]
        self.survivors = [(m, f) for m, f in self.counted if f != "killed"]
        self.strict = [(m, f) for m, f in self.survivors
                       if matches(m.file, STRICT_FILES) and m.operator in STRICT_OPERATORS]

    def killed(self):
        return 1 - len(self.survivors) / max(1, len(self.counted))

    def faults(self):
        """What makes the run fail."""
        survived = {m.key: f for m, f in self.planted if f != "killed"}
        for key, fate in PLANTED_SURVIVORS.items():
            if survived.get(key) != fate:
                yield f"planted mutant not reported as {fate}: {key}"
        killed = {m.key for m, f in self.planted if f == "killed"}
        for key in PLANTED_KILLED:
            if key not in killed:
                yield f"planted mutant not killed: {key}"
        for key in self.stale:
            yield f"listed as equivalent, but killed or gone: {key}"
        if self.killed() < LEAST_KILLED:
            yield f"{self.killed():.1%} killed, the goal is {LEAST_KILLED:.0%}"
        share = len(self.equivalent) / max(1, len(self.equivalent) + len(self.counted))
        if self.is_whole and share > MOST_EQUIVALENT:
            yield f"{share:.1%} listed as equivalent, at most {MOST_EQUIVALENT:.0%} may be"
        if self.strict:
            yield f"{len(self.strict)} survivors where none may be (marked !)"

    def text(self):
        for title, part in (("operator", lambda m: m.operator), ("folder", folder_of)):
            yield f"{title:44} mutants  killed"
            total = Counter(part(m) for m, _ in self.counted)
            killed = Counter(part(m) for m, f in self.counted if f == "killed")
            yield from (f"{name:44} {total[name]:7}  {killed[name] / total[name]:6.1%}"
                        for name in sorted(total))
            yield ""
        for mutant, fate in self.survivors:
            mark = "!" if (mutant, fate) in self.strict else " "
            yield f"{mark} {mutant.file}:{mutant.line}: {fate}\n      {mutant.key}"
        yield (f"{len(self.counted)} mutants, {self.killed():.1%} killed,"
               f" {len(self.survivors)} survived; {len(self.equivalent)} more change nothing")


def folder_of(mutant):
    return mutant.file.rsplit("/", 1)[0]
