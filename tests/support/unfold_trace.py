#!/usr/bin/python3
"""unfold_trace.py TRACE: prints a trace that `pfsdoc trace --fold` wrote as without --fold, one
event a line. A trace that is not folded is printed as it stands."""
import re
import sys

RUN = re.compile(rb'( *)(text|special) "(.*)"')
FOLDED_BYTE = re.compile(rb"\\x([0-9A-F]{2})|\\?(.)")
EVENT = {b"text": b"char", b"special": b"special"}


def event(name, byte):
    line = b"%s %02X" % (name, byte)
    return line + b" %c" % byte if 0x20 < byte < 0x7F else line


def events(line):
    run = RUN.fullmatch(line)
    if not run:
        return [line]
    indent, name, folded = run.groups()
    return [
        indent + event(EVENT[name], int(code, 16) if code else ord(shown))
        for code, shown in FOLDED_BYTE.findall(folded)
    ]


with open(sys.argv[1], "rb") as trace:
    for line in trace.read().splitlines():
        for unfolded in events(line):
            sys.stdout.buffer.write(unfolded + b"\n")
