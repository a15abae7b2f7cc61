"""pandoc_reader.py READER PFSDOC SAMPLES: see pandoc.sh.

The reader has one way in for pandoc 2 and another for pandoc 3, and only one pandoc is
installed. The way that is not its own is called all the same, by a reader that claims to be of
the other version and gives it the bytes that pandoc 3 would."""

import os
import pathlib
import subprocess
import sys
import tempfile

sys.path.insert(0, str(pathlib.Path(__file__).parent.parent / "judges"))
from sample_words import first_difference, page_words, plain_words, report, samples  # noqa: E402

AS_VERSION_3 = """
PANDOC_VERSION = pandoc.types.Version "3.1"
dofile "{reader}"
assert(Reader == nil)
local read = ByteStringReader
ByteStringReader = nil
function Reader(sources)
  local file = assert(io.open(sources[1].name, "rb"))
  return read(file:read("a"), {{}})
end
"""


class Pandoc:
    """Starts pandoc in the reader's folder: pandoc 2 changes capitals in the path of a reader
    into small letters, and that of the folder may have some."""

    def __init__(self, reader, pfsdoc):
        self.reader = pathlib.Path(reader).resolve()
        self.environment = dict(os.environ)
        programs = pathlib.Path(pfsdoc).resolve().parent
        self.environment["PATH"] = f"{programs}:{self.environment['PATH']}"

    def run(self, *files, given=b""):
        return subprocess.run(
            ["pandoc", "-f", self.reader.name, "-t", "plain", "--wrap=none", *files],
            input=given, capture_output=True, env=self.environment, check=False,
            cwd=self.reader.parent)

    def words(self, *files):
        done = self.run(*files)
        if done.returncode != 0:
            return ["failed:", *done.stderr.decode("utf-8").split()]
        return plain_words(done.stdout.decode("utf-8"))


def expected(sample):
    return plain_words(" ".join(page_words(sample)))


def sample_faults(pandoc, checked):
    for sample in checked:
        difference = first_difference(expected(sample), pandoc.words(sample))
        if difference:
            yield f"{sample.parent.name}/{sample.stem} by {pandoc.reader.name}: words {difference}"


def other_faults(pandoc, pfsdoc, checked, work):
    """Names and files that are not as they should be."""
    first, second = checked[0], checked[-1]
    difference = first_difference(expected(first) + expected(second),
                                  pandoc.words(first, second))
    if difference:
        yield f"two documents: words {difference}"

    odd_name = work / "Ein Brief; 'tis \"LETTER\".12"
    odd_name.write_bytes(first.read_bytes())
    if pandoc.words(odd_name) != expected(first):
        yield "a name with blanks and quotes is not read"

    reader_beside = work / "pfsdoc.lua"
    reader_beside.write_bytes(pandoc.reader.read_bytes())
    (work / "--help").write_bytes(first.read_bytes())
    if Pandoc(reader_beside, pfsdoc).words("--", "--help") != expected(first):
        yield "a name that looks like an option is not read"

    cut = work / "CUT"
    cut.write_bytes(first.read_bytes()[:1500])
    words = pandoc.words(cut)
    if not 10 < len(words) < len(expected(first)) or words[0] != expected(first)[0]:
        yield f"a cut document is read as {words}"

    cut.write_text("no document\n")
    done = pandoc.run(cut)
    if done.returncode == 0 or b"pfsdoc cannot read the document" not in done.stderr:
        yield f"no document: exit code {done.returncode}, {done.stderr}"


def input_faults(pandoc, sample):
    """Pandoc 2 has no bytes of standard input; pandoc 3 has."""
    done = pandoc.run(given=sample.read_bytes())
    if done.returncode == 0:
        if plain_words(done.stdout.decode("utf-8")) != expected(sample):
            yield "standard input is read as something else"
    elif b"name the document's file" not in done.stderr:
        yield f"standard input: {done.stderr}"


def main(reader, pfsdoc, directory):
    checked = samples(pathlib.Path(directory).resolve())
    pandoc = Pandoc(reader, pfsdoc)
    with tempfile.TemporaryDirectory() as name:
        work = pathlib.Path(name)
        as_version_3 = work / "as_version_3.lua"
        as_version_3.write_text(AS_VERSION_3.format(reader=pandoc.reader))
        faults = [
            *sample_faults(pandoc, checked),
            *sample_faults(Pandoc(as_version_3, pfsdoc), checked),
            *other_faults(pandoc, pfsdoc, checked, work),
            *input_faults(pandoc, checked[0])]
    report("pandoc reader", faults, len(checked))


main(*sys.argv[1:])
