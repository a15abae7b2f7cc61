"""What a run of pfsdoc costs: processor time and peak memory of a process, the file's name and
the answer left out of account. Times are the least of several runs, since what else the machine
does can only add to one; a process's start is taken off."""

import os
import re
import resource
import subprocess
import tempfile
from pathlib import Path

from growth import bodies

KILOBYTE = 1024
MEGABYTE = 1024 * KILOBYTE
LONGEST_RUN = 120  # seconds of processor time: a run that takes longer is ended
PROSE_SIZE = MEGABYTE
LIMIT_CODE = 6
OKAY_CODES = (0, 5, LIMIT_CODE)
SIGNALLED = 128

FORMATS = {name: ["convert", "-t", *name.split()] for name in (
    "text", "text --wrap 0", "text --wrap 40", "text --raw-lines", "text --commands",
    "html", "html --commands", "markdown", "markdown --commands", "json", "json --lines",
    "pandoc", "pandoc --commands", "odt", "odt --commands", "fodt", "trace",
    "trace --fold --offsets")}
FORMATS |= {"explain": ["explain"], "explain --json": ["explain", "--json"]}
# With these all that is done at all is done once; the others differ in little.
MAIN_FORMATS = ("text", "text --raw-lines", "html", "markdown --commands", "json", "pandoc",
                "odt", "fodt", "trace --fold --offsets", "explain")


class Run:
    def __init__(self, seconds, kilobytes, code, words):
        self.seconds = seconds
        self.kilobytes = kilobytes
        self.code = code
        self.words = words

    def fault(self):
        """What is wrong with how it ended, or None."""
        if self.code not in OKAY_CODES:
            return "exit code %d: %s" % (self.code, self.words.strip()[-200:])
        if self.code == LIMIT_CODE and not re.search(r"\bbyte [0-9]", self.words):
            return "a limit without a position: " + self.words.strip()[-200:]
        return None


def limit_time():
    resource.setrlimit(resource.RLIMIT_CPU, (LONGEST_RUN, LONGEST_RUN))


def run(arguments):
    """One process. Its peak includes what it had resident when this process started it, which is
    less than what pfsdoc takes."""
    with tempfile.TemporaryFile() as words:
        child = subprocess.Popen(arguments, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                                 stderr=words, preexec_fn=limit_time)
        _, status, usage = os.wait4(child.pid, 0)
        child.returncode = 0  # it is reaped
        words.seek(0)
        text = words.read().decode(errors="replace")
    ended = os.waitstatus_to_exitcode(status)
    return Run(usage.ru_utime + usage.ru_stime, usage.ru_maxrss,
               ended if ended >= 0 else SIGNALLED - ended, text)


class Meter:
    def __init__(self, program, folder):
        self.program = program
        self.file = Path(folder, "document")
        self.prose_costs = {}
        self.start_costs = {}

    # A process's peak includes what this one has resident when it starts it, so a document is made
    # in pieces.
    def runs(self, name, count):
        made = [run([self.program, *FORMATS[name], str(self.file)]) for _ in range(count)]
        return min(made, key=lambda one: one.seconds)

    def start_cost(self, name):
        if name not in self.start_costs:
            bodies.write_document("1012 plain x20", 0, self.file)
            self.start_costs[name] = self.runs(name, 9).seconds
        return self.start_costs[name]

    def prose_cost(self, kind, name, again=False):
        """Of a byte, in seconds; as it is now, if asked for again."""
        if again or (kind, name) not in self.prose_costs:
            start = self.start_cost(name)
            self.file.write_bytes(bodies.prose(kind, PROSE_SIZE))
            best = self.runs(name, 3)
            self.prose_costs[kind, name] = max(best.seconds - start, 1e-9) / PROSE_SIZE
        return self.prose_costs[kind, name]

    def measure(self, recipe, name, size, count):
        """The run, and its seconds without the start's."""
        start = self.start_cost(name)
        bodies.write_document(recipe, size, self.file)
        best = self.runs(name, count)
        return best, max(best.seconds - start, 0.0)
