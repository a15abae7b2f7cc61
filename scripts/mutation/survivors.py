"""Reads the list of changes that no test can notice, which says why: for each file a heading,
and below it blocks of changes with the reason behind each block.

    ## vs_pfs/attributes.cpp

    ```diff
    @@ check_attributes
    - the line as it stands in the source, without indentation and comment
    + the line as the change leaves it
    ```
    Why nothing can come of it.

A change of several lines has several of either sort. The function is left out of a change
that is in none. Line numbers there are none, so the list stays true when lines move.
"""
import re

SECTION = re.compile(r"^## (\S+)\n(.*?)(?=^## |\Z)", re.MULTILINE | re.DOTALL)
BLOCK = re.compile(r"^```diff\n(.*?)^```", re.MULTILINE | re.DOTALL)
CHANGE = re.compile(r"^@@ ?(.*)\n|((?:^- .*\n)+)((?:^\+ .*\n)+)", re.MULTILINE)


def lines_of(group):
    return tuple(line[2:] for line in group.rstrip("\n").split("\n"))


def explained(text):
    """The keys of the changes that the list explains: see Mutant.key."""
    keys = set()
    for path, section in SECTION.findall(text):
        for block in BLOCK.findall(section):
            function = ""
            for named, old, new in CHANGE.findall(block):
                if old:
                    keys.add((path, function, lines_of(old), lines_of(new)))
                else:
                    function = named
    return keys


def block_of(mutant):
    """The change as the list has it."""
    old, new = mutant.difference
    lines = [f"@@ {mutant.function}"] if mutant.function else []
    return "\n".join([*lines, *(f"- {line}" for line in old), *(f"+ {line}" for line in new)])
