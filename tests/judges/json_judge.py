"""json_judge.py PFSDOC SAMPLES SCHEMA: see json.sh."""

import copy
import json
import sys

import jsonschema

from sample_words import convert, first_difference, in_page_order, page_words, report, samples


def words(blocks):
    text = ""
    for block in in_page_order(blocks):
        runs = block.get("runs", [])
        text += "".join(run["text"] for run in runs if run["type"] == "text") + "\n"
    return text.replace("\t", " ").split()


def source_faults(blocks, size):
    """Paragraphs of the body meet, runs lie in their paragraph in order, all in the file."""
    last_end = None
    for block in blocks:
        if block["type"] == "page_break":
            if block["source"] > size:
                yield f"a page break at {block['source']} of {size}"
            continue
        begin, end = block["source_begin"], block["source_end"]
        if not 0 < begin <= end <= size:
            yield f"a {block['type']} from {begin} to {end} of {size}"
        if block["type"] == "paragraph":
            if last_end not in (None, begin):
                yield f"a paragraph at {begin} behind one that ends at {last_end}"
            last_end = end
        sources = [run["source"] for run in block["runs"]]
        if sources != sorted(sources) or any(not begin <= at <= end for at in sources):
            yield f"runs at {sources} in a {block['type']} from {begin} to {end}"


def broken_variants(document):
    """What the schema has to refuse, or it says nothing."""
    def variant(change):
        changed = copy.deepcopy(document)
        change(changed)
        return changed

    def first_text(changed):
        return next(run for block in changed["blocks"] for run in block.get("runs", [])
                    if run["type"] == "text")

    yield "no version", variant(lambda d: d.pop("pfsdoc"))
    yield "another version", variant(lambda d: d.update(pfsdoc=2))
    yield "no losses", variant(lambda d: d.pop("losses"))
    yield "no end", variant(lambda d: d.pop("after_end"))
    yield "nothing after the end", variant(lambda d: d.update(after_end={"offset": 1, "bytes": 0}))
    yield "an unknown kind", variant(lambda d: d["document"].update(kind="Other"))
    yield "an unknown block", variant(lambda d: d["blocks"][0].update(type="table"))
    yield "an unknown member", variant(lambda d: d["blocks"][0].update(colour=1))
    yield "a paragraph without runs", variant(lambda d: d["blocks"][0].pop("runs"))
    yield "a source in words", variant(lambda d: d["blocks"][0].update(source_begin="here"))
    yield "a negative source", variant(lambda d: first_text(d).update(source=-1))
    yield "an unknown attribute", variant(lambda d: first_text(d).update(attributes=["blink"]))
    yield "an attribute twice", variant(lambda d: first_text(d).update(attributes=["bold"] * 2))
    yield "empty text", variant(lambda d: first_text(d).update(text=""))
    yield "an unknown loss", variant(
        lambda d: d["losses"].append({"what": "bold", "count": 1, "first_source": 0}))


def sample_faults(pfsdoc, sample, whole, line):
    document = json.loads(convert(pfsdoc, sample, "-t", "json"))
    lines = [json.loads(text) for text in convert(pfsdoc, sample, "-t", "json", "--lines").splitlines()]
    for error in whole.iter_errors(document):
        yield f"{error.json_path}: {error.message}"
    for number, record in enumerate(lines, 1):
        for error in line.iter_errors(record):
            yield f"line {number}: {error.message}"
    if lines[0] != {key: document[key] for key in ("pfsdoc", "document")}:
        yield "the first line is not the document's"
    if lines[1:-1] != document["blocks"]:
        yield "the lines are not the blocks"
    end = {key: document[key] for key in ("losses", "after_end")}
    if lines[-1] != {"type": "end", "blocks": len(lines) - 2, **end}:
        yield f"the last line is {lines[-1]}"
    difference = first_difference(page_words(sample), words(document["blocks"]))
    if difference:
        yield f"words {difference}"
    yield from source_faults(document["blocks"], sample.stat().st_size)
    for what, variant in broken_variants(document):
        if whole.is_valid(variant):
            yield f"the schema accepts {what}"


def main(pfsdoc, directory, schema_path):
    with open(schema_path, encoding="utf-8") as file:
        schema = json.load(file)
    validator = jsonschema.Draft202012Validator
    validator.check_schema(schema)
    whole = validator(schema)
    line = validator({"$ref": "#/$defs/line", "$defs": schema["$defs"]})
    faults = []
    checked = samples(directory)
    for sample in checked:
        for fault in sample_faults(pfsdoc, sample, whole, line):
            faults.append(f"{sample.parent.name}/{sample.stem}: {fault}")
    report("json", faults, len(checked))


main(*sys.argv[1:])
