"""tika_files.py DIRECTORY MIME_FILE PFSDOC SAMPLES: see tika.sh."""

import os
import pathlib
import subprocess
import sys
import xml.etree.ElementTree as ElementTree

sys.path.insert(0, str(pathlib.Path(__file__).parent.parent / "judges"))
from sample_words import report, samples  # noqa: E402


def local_name(element):
    return element.tag.rpartition("}")[2]


def signatures(element):
    """Each way through the nested matches, as a list of (offset, value)."""
    inner = [child for child in element if local_name(child) == "match"]
    own = [(element.get("offset"), element.get("value"))] if element.get("offset") else []
    if not inner:
        return [own]
    return [own + rest for child in inner for rest in signatures(child)]


def types(path):
    """Type: (priority, signatures) of every type in a file of either form."""
    return {element.get("type"): [(magic.get("priority"), signatures(magic))
                                  for magic in element if local_name(magic) == "magic"]
            for element in ElementTree.parse(path).getroot()}


def run(command, pfsdoc):
    """A command as Tika starts it: divided at blanks, no shell, the program by the path."""
    environment = dict(os.environ)
    environment["PATH"] = f"{pathlib.Path(pfsdoc).parent}:{environment['PATH']}"
    return subprocess.run(command, capture_output=True, env=environment, check=False)


def faults(directory, mime_file, pfsdoc, checked):
    mime = types(mime_file)
    if len(mime) < 4 or not all(mime.values()):
        yield f"few types or no magic in {mime_file}"
    if types(directory / "custom-mimetypes.xml") != mime:
        yield "custom-mimetypes.xml knows other types, or by other bytes"

    parser = ElementTree.parse(directory / "tika-external-parsers.xml").getroot().find("parser")
    named = {element.text for element in parser.iter("mime-type")}
    if named != set(mime):
        yield f"the parser is for {sorted(named)}"
    check = parser.find("check")
    done = run(check.findtext("command").split(), pfsdoc)
    if done.returncode != 0 or str(done.returncode) in check.findtext("error-codes").split(","):
        yield f"the check fails: {done.returncode}"
    for sample in checked:
        words = parser.findtext("command").split()
        done = run([str(sample) if word == "${INPUT}" else word for word in words], pfsdoc)
        if done.returncode != 0 or done.stdout != sample.with_suffix(".text").read_bytes():
            yield f"{sample}: exit code {done.returncode}, or another text"


def main(directory, mime_file, pfsdoc, directory_of_samples):
    checked = samples(directory_of_samples)
    found = list(faults(pathlib.Path(directory), mime_file, pfsdoc, checked))
    report("tika", found, len(checked))


main(*sys.argv[1:])
