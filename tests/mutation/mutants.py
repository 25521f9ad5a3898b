"""What a mutant is: one small change of one source."""

import random
import re
from dataclasses import dataclass

COMMENT = re.compile(r"//[^\n]*|/\*.*?\*/", re.DOTALL)
# What a place holds: any value, a truth, a whole statement; or text is put in front of the place;
# or the place is a statement that is skipped.
VALUE, TRUTH, STATEMENT, INSERTED, SKIPPED = range(5)


@dataclass(frozen=True)
class Mutant:
    """In `file`, what stands from `start` to `end` becomes `text`, in each of its places."""
    file: str
    function: str
    operator: str
    line: int
    was: str
    becomes: str
    level: int
    places: tuple  # of (start, end, text)
    ordinal: int = 1

    @property
    def key(self):
        """Names the mutant by what it changes, wherever that moves to."""
        again = f" #{self.ordinal}" if self.ordinal > 1 else ""
        return f"{self.file} {self.function} {self.operator}: {self.was} -> {self.becomes}{again}"


def flat(text):
    return " ".join(COMMENT.sub(" ", text).split())


def sampled(mutants, always, count, seed):
    """The numbers of `count` of the mutants, the same for the same seed and mutants, and of all in
    the file `always`. `mutants` are by number."""
    kept = [n for n, mutant in mutants.items() if mutant.file == always]
    others = sorted(mutants.keys() - set(kept), key=lambda n: mutants[n].key)
    return kept + random.Random(seed).sample(others, min(count, len(others)))
