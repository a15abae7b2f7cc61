"""pandoc_judge.py PFSDOC SAMPLES: see pandoc.sh."""

import json
import pathlib
import subprocess
import sys
import tempfile

from sample_words import convert, first_difference, page_words, plain_words, report, samples

ARCHIVES = ("docx", "epub")


class Judge:
    def __init__(self, tree, directory):
        self.tree = tree
        self.directory = pathlib.Path(directory)

    def run(self, *command):
        done = subprocess.run(command, input=self.tree.encode("utf-8"), capture_output=True)
        if done.returncode != 0 or done.stderr:
            said = done.stderr.decode("utf-8", "replace").strip()
            raise ValueError(f"{' '.join(command)}: {said or done.stdout.decode()}")
        return done.stdout.decode("utf-8")

    def pandoc(self, to, *options):
        return self.run("pandoc", "--fail-if-warnings", "-f", "json", "-t", to, *options)

    def faults(self, expected_words):
        if json.loads(self.pandoc("json")) != json.loads(self.tree):
            yield "pandoc's own tree is another"
        plain = plain_words(self.pandoc("plain", "--wrap=none"))
        difference = first_difference(plain_words(" ".join(expected_words)), plain)
        if difference:
            yield f"words {difference}"
        if not self.pandoc("rst").strip():
            yield "nothing in reStructuredText"
        for to in ARCHIVES:
            path = str(self.directory / f"sample.{to}")
            self.pandoc(to, "-o", path)
            self.run("unzip", "-tqq", path)


def main(pfsdoc, directory):
    faults = []
    checked = samples(directory)
    with tempfile.TemporaryDirectory() as work:
        for sample in checked:
            name = f"{sample.parent.name}/{sample.stem}"
            judge = Judge(convert(pfsdoc, sample, "-t", "pandoc"), work)
            try:
                faults += [f"{name}: {fault}" for fault in judge.faults(page_words(sample))]
            except ValueError as error:
                faults.append(f"{name}: {error}")
    report("pandoc", faults, len(checked))


main(*sys.argv[1:])
