"""What the judges of formats know of a sample without the format: its words, which
samples/*/*.text has as the page shows them."""

import json
import pathlib
import re
import subprocess
import sys
import unicodedata


def samples(directory):
    found = sorted(pathlib.Path(directory).glob("*/*.doc"))
    if len(found) < 14:
        sys.exit(f"only {len(found)} samples in {directory}")
    return found


def page_words(sample):
    return sample.with_suffix(".text").read_text(encoding="utf-8").split()


def plain_words(text):
    """The words of pandoc's plain text, which has H2O with a small 2, new^(est) where no small
    letters are to be had, and lines for page breaks."""
    even = re.sub(r"[_^]\(([^()]*)\)", r"\1", unicodedata.normalize("NFKC", text))
    return [word for word in even.split() if not re.fullmatch("-{20,}", word)]


def convert(pfsdoc, sample, *options):
    done = subprocess.run([pfsdoc, "convert", *options, sample], capture_output=True, check=True)
    return done.stdout.decode("utf-8")


def in_page_order(blocks):
    """Header lines, the body, footer lines: the order of the page and of all other formats."""
    def place(block):
        return {"header": 0, "footer": 2}.get(block["type"], 1)
    return sorted(blocks, key=place)


def converted_blocks(pfsdoc, sample):
    return in_page_order(json.loads(convert(pfsdoc, sample, "-t", "json"))["blocks"])


def first_difference(ours, theirs):
    """Nothing where both lists are the same, and the place in words where they are not."""
    for index in range(max(len(ours), len(theirs))):
        if ours[index:index + 1] != theirs[index:index + 1]:
            return f"at {index}: {ours[index:index + 8]} is read as {theirs[index:index + 8]}"
    return None


def report(judge, faults, checks):
    if checks == 0:
        faults.append("nothing was checked")
    for fault in faults:
        print(f"{judge}: {fault}")
    print(f"{judge}: {checks} checks, {len(faults)} faults")
    sys.exit(1 if faults else 0)
