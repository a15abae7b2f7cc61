#!/usr/bin/python3
"""edges.py PDF TEXT: whether every word of the pages keeps a quarter of an inch from each edge of
the paper, and whether all of the text's letters are there."""
import collections
import html
import re
import subprocess
import sys

LEAST = 18  # points
PAGE = re.compile(r'<page width="([\d.]+)" height="([\d.]+)">(.*?)</page>', re.S)
WORD = re.compile(r'<word xMin="([\d.-]+)" yMin="([\d.-]+)" xMax="([\d.-]+)" yMax="([\d.-]+)">'
                  r'(.*?)<')


def main(pdf, text):
    found = subprocess.run(["pdftotext", "-bbox", pdf, "-"], check=True, capture_output=True,
                           encoding="utf-8").stdout
    printed = collections.Counter()
    for width, height, page in PAGE.findall(found):
        for left, top, right, bottom, word in WORD.findall(page):
            printed.update(html.unescape(word))
            if (min(float(left), float(top)) < LEAST or float(right) > float(width) - LEAST
                    or float(bottom) > float(height) - LEAST):
                sys.exit(f"edges: {pdf}: {word[:40]!r} is too near to the edge: "
                         f"{left} to {right} of {width}, {top} to {bottom} of {height}")
    with open(text, encoding="utf-8") as file:
        wanted = collections.Counter("".join(file.read().split()))
    # Header and footer are on every page.
    if missing := {letter: count for letter, count in wanted.items() if printed[letter] < count}:
        sys.exit(f"edges: {pdf}: missing: {missing}")


main(*sys.argv[1:])
