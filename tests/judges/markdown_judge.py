"""markdown_judge.py PFSDOC SAMPLES: see markdown.sh.

Both sides are brought into one form: a list of paragraphs, each a list of characters with
their emphasis. Gaps are one blank without any; "***" stands for a page break."""

import subprocess
import sys
import xml.etree.ElementTree

from sample_words import converted_blocks, convert, first_difference, page_words, report, samples

EMPHASES = {"strong": "bold", "emph": "italic"}
PAGE_BREAK = [("***", frozenset())]


def normalised(characters):
    """Without blanks at the edges, one for each gap."""
    result = []
    for character, emphasis in characters:
        if character not in " \t":
            result.append((character, emphasis))
        elif result and result[-1][0] != " ":
            result.append((" ", frozenset()))
    return result[:-1] if result and result[-1][0] == " " else result


def characters_of(element, emphasis=frozenset()):
    name = element.tag.rpartition("}")[2]
    if name == "text":
        yield from ((character, emphasis) for character in element.text)
    elif name in ("paragraph", *EMPHASES):
        inner = emphasis | {EMPHASES[name]} if name in EMPHASES else emphasis
        for child in element:
            yield from characters_of(child, inner)
    else:
        raise ValueError(f"cmark reads a {name}")


def as_read(markdown):
    done = subprocess.run(["cmark", "-t", "xml"], input=markdown.encode("utf-8"),
                          capture_output=True, check=True)
    paragraphs = []
    for block in xml.etree.ElementTree.fromstring(done.stdout.decode("utf-8")):
        if block.tag.endswith("thematic_break"):
            paragraphs.append(PAGE_BREAK)
        else:
            paragraphs.append(normalised(characters_of(block)))
    return paragraphs


def as_meant(blocks, commands):
    """From the JSON of the same document: one paragraph for each, cut up at page breaks."""
    paragraphs = []
    for block in blocks:
        paragraph = []
        for run in block.get("runs", [block]):
            if run["type"] == "page_break":
                paragraphs += [normalised(paragraph), PAGE_BREAK]
                paragraph = []
            elif run["type"] == "text" or commands:
                emphasis = frozenset(run["attributes"]) & frozenset(EMPHASES.values())
                paragraph += [(character, emphasis) for character in run["text"]]
        paragraphs.append(normalised(paragraph))
    return [paragraph for paragraph in paragraphs if paragraph]


def words(paragraphs):
    text = "\n".join("".join(character for character, _ in paragraph)
                     for paragraph in paragraphs if paragraph != PAGE_BREAK)
    return text.split()


def sample_faults(pfsdoc, sample):
    blocks = converted_blocks(pfsdoc, sample)
    for options in ([], ["--commands"]):
        try:
            read = as_read(convert(pfsdoc, sample, "-t", "markdown", *options))
        except ValueError as error:
            yield str(error)
            continue
        difference = first_difference(as_meant(blocks, bool(options)), read)
        if difference:
            yield f"paragraphs {difference}"
        if not options and page_words(sample) != words(read):
            yield f"words {first_difference(page_words(sample), words(read))}"


def main(pfsdoc, directory):
    faults = []
    checked = samples(directory)
    for sample in checked:
        for fault in sample_faults(pfsdoc, sample):
            faults.append(f"{sample.parent.name}/{sample.stem}: {fault}")
    report("markdown", faults, len(checked))


main(*sys.argv[1:])
