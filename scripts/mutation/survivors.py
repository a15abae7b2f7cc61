"""Reads the list of changes that no test can detect: classes with a reason each, and below it
one entry for each change.

    - `vs_pfs/attributes.cpp`, `change_attributes`: `uint8_t pending` → `uint16_t pending`
    - `vs_pfs/char_stream.cpp`, `VwCharToBlock`: `std::free(stream);` removed

An entry quotes enough of the line to identify the change. A change outside any function has no
function name. There are no line numbers, so the list stays valid when lines move.
"""
import re
from dataclasses import dataclass

ENTRY = re.compile(
    r"^- `([^`]+)`(?:, `([^`]+)`)?: `([^`]+)` (?:→ `([^`]+)`|removed)$", re.MULTILINE)
REMOVED = ";"  # what scripts/mutate leaves of a statement


@dataclass(frozen=True)
class Entry:
    path: str
    function: str
    old: str
    new: str

    def explains(self, mutant):
        if (self.path, self.function) != (mutant.path, mutant.function):
            return False
        old, new = ("\n".join(lines) for lines in mutant.difference)
        return any(old[:at] + self.new + old[at + len(self.old):] == new
                   for at in positions_of(self.old, old))

    def __str__(self):
        return " ".join([self.path, self.function, self.old, "->", self.new])


def positions_of(part, line):
    return [match.start() for match in re.finditer(re.escape(part), line)]


def entries(text):
    return [Entry(path, function or "", old, new or REMOVED)
            for path, function, old, new in ENTRY.findall(text)]


def explained(listed, mutants):
    """The keys of the mutants that the entries explain: see Mutant.key."""
    by_path = {}
    for entry in listed:
        by_path.setdefault(entry.path, []).append(entry)
    return {mutant.key for mutant in mutants
            if any(entry.explains(mutant) for entry in by_path.get(mutant.path, ()))}


def stale(listed, mutants):
    """The entries that explain nothing any more."""
    return [entry for entry in listed if not any(entry.explains(mutant) for mutant in mutants)]


def difference_of(mutant):
    old, new = mutant.difference
    lines = [f"in {mutant.function}"] if mutant.function else []
    return "\n".join([*lines, *(f"- {line}" for line in old), *(f"+ {line}" for line in new)])
