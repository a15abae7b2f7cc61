#!/usr/bin/python3
"""includes.py: fails when a file includes what its folder may not, when a quoted include is not
the path of a file from the project's root (or from include/), or when headers include each other
in a circle.

The table says for each folder which others its files may include, beside their own folder and
the system's headers. A folder that is not in the table may include nothing.
"""
import posixpath
import re
import sys

from sources import source_files

MODULE_API = "include/vs_pfs.h"
LIBRARY_API = "include/pfsdoc"
PUBLIC = {MODULE_API, LIBRARY_API}

ALLOWED = {
    # The interface.
    MODULE_API: set(),
    LIBRARY_API: {MODULE_API},
    # Facts of the formats, and what knows them.
    "formats": set(),
    "vsd_pfs": {"formats", MODULE_API},
    "vs_pfs": {"formats", "vsd_pfs", MODULE_API},
    "vs_pfs/line_readers": {"vs_pfs", "formats", "vsd_pfs", MODULE_API},
    "builder": {"formats"},
    # The library, from the ground up. It knows of the module what any host does.
    "lib/base": {"formats"} | PUBLIC,
    "lib/reading": {"lib/base", "formats"} | PUBLIC,
    "lib/page": {"lib/reading", "lib/base"} | PUBLIC,
    "lib/writers": {"lib/page", "lib/reading", "lib/base"} | PUBLIC,
    "lib/explain": {"lib/reading", "lib/base", "formats"} | PUBLIC,
    # What a process gives up before it reads a stranger's bytes.
    "sandbox": {"lib/base", LIBRARY_API},
    # The programs.
    "cli": {"lib/base", LIBRARY_API},
    "command": {"cli", "sandbox", "lib/base", "lib/reading", "lib/writers", "lib/explain"} | PUBLIC,
    "batch": {"batch/trusted", "batch/sandboxed", "batch/wire", "cli", "lib/base", LIBRARY_API},
    # What sees a stranger's bytes, and what must not: neither includes the other.
    "batch/wire": {"sandbox", "lib/base", LIBRARY_API},
    "batch/trusted": {"batch/wire", "cli", "lib/base", LIBRARY_API},
    "batch/sandboxed": {"batch/wire", "sandbox", "lib/base", LIBRARY_API},
    # Complete hosts, for others to start from.
    "examples": PUBLIC,
    "tests/install": PUBLIC,
    # A second reading of the formats, which shares none of the module's knowledge of them.
    "tests/model": {"tests/support", MODULE_API},
}
# What is tested, measured or fuzzed may be anything.
FREE = ("tests", "fuzz", "bench")

INCLUDE = re.compile(r'^[ \t]*#[ \t]*include[ \t]+"([^"]+)"', re.MULTILINE)


def rule_of(path):
    """The entry of the table for a file: that of the innermost folder that has one."""
    while path and path not in ALLOWED:
        path = posixpath.dirname(path)
    return path


def includes_of(path, text, files):
    """The files that a file includes, and a line for each include that leads nowhere."""
    found, faults = [], []
    for name in INCLUDE.findall(text):
        target = name if name in files else "include/" + name
        if target in files:
            found.append(target)
        else:
            faults.append(f'{path}: "{name}" is no file of the project by its path from the root')
    return found, faults


def forbidden(path, target):
    if path.startswith(FREE) and not rule_of(path):
        return None
    own = rule_of(path)
    other = rule_of(target) or posixpath.dirname(target)
    if other == own or other in ALLOWED.get(own, set()):
        return None
    return f"{path} may not include {target}: {own or 'no folder of it'} is not allowed to"


def circle(graph):
    """Files that include each other, or None."""
    finished = set()
    for start in graph:
        path, stack = [], [(start, False)]
        while stack:
            file, leaves = stack.pop()
            if leaves:
                finished.add(path.pop())
            elif file in path:
                return path[path.index(file) :] + [file]
            elif file not in finished:
                path.append(file)
                stack.append((file, True))
                stack += [(target, False) for target in graph[file]]
    return None


def faults_of(files):
    graph, faults = {}, []
    for path, text in files.items():
        graph[path], lost = includes_of(path, text, files)
        faults += lost
        faults += filter(None, (forbidden(path, target) for target in graph[path]))
    around = circle(graph)
    if around:
        faults.append("a circle: " + " includes ".join(around))
    return faults, sum(map(len, graph.values()))


def test_itself():
    """Each planted fault is found."""
    planted = {
        "lib/base/a.h": '#include "lib/base/b.h"\n#include "b.h"\n#include <vector>\n',
        "lib/base/b.h": '#include "lib/base/a.h"\n  #  include "lib/page/c.h"\n',
        "lib/page/c.h": '#include "vs_pfs.h"\n',
        "include/vs_pfs.h": "",
        "batch/trusted/d.h": '#include "batch/sandboxed/e.h"\n',
        "batch/sandboxed/e.h": "",
        "other/f.h": '#include "vs_pfs.h"\n',
        "tests/g.h": '#include "batch/trusted/d.h"\n',
    }
    found, count = faults_of(planted)
    expected = ["lib/base/a.h: \"b.h\"", "lib/base/b.h may not", "batch/trusted/d.h may not",
                "other/f.h may not", "a circle: lib/base/a.h includes lib/base/b.h includes lib/base"]
    assert len(found) == len(expected) and count == 7, found
    for fault, start in zip(found, expected):
        assert fault.startswith(start), found


def main():
    test_itself()
    # The strangers' programs are compiled where there is no root.
    files = {path: text for path, text in source_files()
             if not path.startswith("tests/install/programs/")}
    faults, count = faults_of(files)
    faults += [f"the table has {folder}, which has no file" for folder in ALLOWED
               if folder != "tests/install" and not any(rule_of(path) == folder for path in files)]
    print(*faults, sep="\n")
    print(f"{count} includes in {len(files)} files, {len(faults)} faults")
    sys.exit(1 if faults or not count else 0)


main()
