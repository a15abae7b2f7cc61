#!/usr/bin/python3
"""odf_spacing.py PDF WORD POINTS WORD...: whether each word, where it first stands on the first
page below the one before, stands so many points below it, give or take half a point."""
import re
import subprocess
import sys

TOLERANCE = 0.5


def words_of_first_page(pdf):
    command = ["pdftotext", "-bbox", "-l", "1", pdf, "-"]
    boxes = subprocess.run(command, check=True, capture_output=True).stdout.decode()
    found = re.findall(r'yMin="([0-9.]+)".*>([^<]*)</word>', boxes)
    return [(float(y), word) for y, word in found]


def main():
    words = words_of_first_page(sys.argv[1])
    above = next(y for y, word in words if word == sys.argv[2])
    for points, name in zip(map(float, sys.argv[3::2]), sys.argv[4::2]):
        here = next(y for y, word in words if word == name and y > above)
        if abs(here - above - points) > TOLERANCE:
            sys.exit(f"{sys.argv[1]}: {name} is {here - above:.2f} points down, not {points}")
        above = here


main()
