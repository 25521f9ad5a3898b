"""Writes all mutants of a source into it, each behind a question that is answered at run time."""

import bisect
from dataclasses import dataclass, field

from mutants import INSERTED, SKIPPED, STATEMENT, TRUTH, VALUE


@dataclass
class Written:
    """The text of a mutated source, and which columns of it belong to which mutant."""
    text: str
    spans: list  # of (start, end, number)
    lines: list = field(default_factory=list)

    def __post_init__(self):
        self.lines = [0] + [i + 1 for i, c in enumerate(self.text) if c == "\n"]

    def at(self, line, column):
        """The mutants in whose text a place (from 1) lies."""
        at = self.lines[line - 1] + column - 1
        return [number for start, end, number in self.spans if start <= at < end]

    def in_line(self, line, _=None):
        start = self.lines[line - 1]
        end = self.lines[line] if line < len(self.lines) else len(self.text)
        return sorted({n for s, e, n in self.spans if start <= s < end})


def write(source, mutants):
    """`source` (bytes) with `mutants`, a list of (number, Mutant)."""
    return _Writer(source, mutants).written()


class _Writer:
    def __init__(self, source, mutants):
        self.source = source
        self.at = {}  # (start, end) -> level -> [(number, text)]
        self.inserted = {}  # offset -> [(number, place)]
        self.skipped = {}  # start -> numbers
        self.ends = {}  # end -> how many skipped statements end there
        for number, mutant in mutants:
            for start, end, *rest in mutant.places:
                if mutant.level == INSERTED:
                    self.inserted.setdefault(start, []).append((number, rest))
                elif mutant.level == SKIPPED:
                    self.skipped.setdefault(start, []).append(number)
                    self.ends[end] = self.ends.get(end, 0) + 1
                else:
                    levels = self.at.setdefault((start, end), {})
                    levels.setdefault(mutant.level, []).append((number, rest[0]))
        # An outer place comes before those in it.
        self.places = sorted(self.at, key=lambda place: (place[0], -place[1]))
        self.insertions = sorted({*self.inserted, *self.skipped, *self.ends})
        self.out = []
        self.length = 0
        self.spans = []

    def written(self):
        self.next = 0
        self.copy(0, len(self.source))
        return Written("".join(self.out), self.spans)

    def put(self, text):
        self.out.append(text)
        self.length += len(text)

    def copy(self, start, end):
        """Puts the source from `start` to `end`, with the mutants in it."""
        while self.next < len(self.places) and self.places[self.next][0] < end:
            place = self.places[self.next]
            assert start <= place[0] <= place[1] <= end, f"{place} crosses {start, end}"
            self.next += 1
            self.plain(start, place[0])
            self.insert_at(place[0])
            self.choice(place, self.at[place], [VALUE, TRUTH, STATEMENT])
            start = place[1]
        self.plain(start, end)

    def plain(self, start, end):
        """Puts source without places; insertions stand behind the offset that they name."""
        first = bisect.bisect_left(self.insertions, start)
        while first < len(self.insertions) and self.insertions[first] < end:
            offset = self.insertions[first]
            self.put(self.source[start:offset].decode())
            self.insert_at(offset)
            start = offset
            first += 1
        self.put(self.source[start:end].decode())

    def insert_at(self, offset):
        self.put(" }" * self.ends.pop(offset, 0))
        self.insert_before(offset)
        # The braces keep an `else` with the `if` that it belongs to.
        for number in self.skipped.pop(offset, ()):
            self.asking(number, f"{{ if (!qosMutant({number})) ")

    def insert_before(self, offset):
        mutants = self.inserted.pop(offset, None)
        if mutants is None:
            return
        if len(mutants[0][1]) == 1:
            for number, (text,) in mutants:
                self.asking(number, f"if (qosMutant({number})) {{ {text} }}")
            return
        # The condition that declares a name: what is tested is written out behind it.
        self.put("; ")
        for number, (value, _) in mutants:
            self.asking(number, f"qosMutant({number}) ? {value} : ")
        self.put(f"static_cast<bool>({mutants[0][1][1]})")

    def asking(self, number, text):
        self.spans.append((self.length, self.length + len(text), number))
        self.put(text)

    def choice(self, place, levels, order):
        """Puts one place: the statement around the truth around the value around the source."""
        if not order:
            self.copy(*place)
            return
        level = order[-1]
        cast = {STATEMENT: "static_cast<void>", TRUTH: "static_cast<bool>", VALUE: ""}[level]
        if level not in levels:
            self.choice(place, levels, order[:-1])
            return
        self.put("(")
        for number, text in levels[level]:
            self.asking(number, f"qosMutant({number}) ? {cast}({text}) : ")
        self.put(f"{cast}(")
        self.choice(place, levels, order[:-1])
        self.put("))")
