"""injection.py PFSDOC PFSBUILD: see injection.sh.

Names: a document is converted under names of every awkward class of bytes and characters. The
output must be, byte for byte, the one under a plain name, with the name's own escaped form in the
plain one's stead; the escaping is done here a second time, by other means. Independent parsers
must take the output, and manifests must turn back into the names.

Texts: documents of text that means something to HTML, XML, Markdown or JSON, in several character
sets, are converted to all formats and read by independent parsers, those of GitHub's Markdown and
pandoc among them. They must find no element, attribute or link that is not one of the format's
few, and the same letters in all formats.
"""

import collections
import html.parser
import json
import os
import re
import subprocess
import sys
import tempfile
import xml.etree.ElementTree

FORMATS = ["text", "html", "fodt", "markdown", "pandoc", "json", "trace"]

# ------------------------------------------------------------------------------ names ---

BIDI = [0x61C, 0x200E, 0x200F, *range(0x202A, 0x202F), *range(0x2066, 0x206A)]
SEPARATORS = [0x2028, 0x2029]
NONCHARACTERS = [*range(0xFDD0, 0xFDF0)] + [plane << 16 | end for plane in range(17)
                                            for end in (0xFFFE, 0xFFFF)]
UNFIT = {*range(0x20), *range(0x7F, 0xA0), *BIDI, *SEPARATORS, 0xFEFF, *NONCHARACTERS}
ZERO_WIDTH = [0x200B, 0x200C, 0x200D, 0x2060, 0xAD, 0x34F, 0x180E, 0x3164, 0xFFA0]
TAGS = [0xE0001, *range(0xE0020, 0xE0080)]
COMBINING = [0x300, 0x489, 0x20DD, 0x20E3, 0xFE0F, 0xE0100]
OTHERS = [0xE000, 0xFFFC, 0xFFFD, 0x10FFFD, 0x1F3F4, 0x5D0, 0x627]


def character_names():
    for character in sorted(UNFIT - {0}) + ZERO_WIDTH + TAGS + COMBINING + OTHERS:
        yield f"a{chr(character)}b".encode()
    for some in (BIDI, SEPARATORS, NONCHARACTERS, ZERO_WIDTH, TAGS):
        yield "".join(map(chr, some)).encode()[:240]
    yield ("e" + "\u0301" * 100).encode()


# Surrogates, one and in pairs; overlong, cut and too large sequences; bytes of no sequence.
BROKEN = [b"\xED\xA0\x80", b"\xED\xBF\xBF", b"\xED\xA0\xBD\xED\xB8\x80", b"\xC0\xAF", b"\xC1\xBF",
          b"\xE0\x80\xAF", b"\xF0\x80\x80\xAF", b"\xF4\x90\x80\x80", b"\xF8\x88\x80\x80\x80",
          b"\xE2\x80", b"\xE2", b"\xF0\x9F\x98", b"\x80", b"\xBF", b"\xFE", b"\xFF", b"\xFE\xFF",
          b"\xC3", b"\xC3(", b"\xE2(\xA1"]
MARKUP = ["<script>alert(1)<", "<!--", "-->", "]]>", "<![CDATA[", "&lt;", "&#60;b>", "&#x202E;",
          "\"onload=\"x\"", "'><img src=x onerror=y>", "<title>", "*b* _i_ `c` [l](u)", "{{x}}",
          "<1@evil.example>", "www.evil.example", "http:evil", "\\x41", "\\", "%n%s", "$(id)",
          "`id`", "{\"a\":1}", "\\u202e", "#", "- x", "1. x", ";", "|a|b|"]


def escaped(name):
    """As documented: bytes that are no UTF-8, and characters that are not to be shown, as \\xHH."""
    shown = []
    for character in name.decode("utf-8", "surrogateescape"):
        code = ord(character)
        if 0xDC80 <= code <= 0xDCFF:
            shown.append(f"\\x{code - 0xDC00:02X}")
        elif code in UNFIT or character == "\\":
            shown.append("".join(f"\\x{byte:02X}" for byte in character.encode()))
        else:
            shown.append(character)
    return "".join(shown)


def xml_escaped(text):
    return text.replace("&", "&amp;").replace("<", "&lt;").replace(">", "&gt;")


def in_format(name, text):
    """A title's text as the format has it, or None where it has none."""
    if name in ("html", "fodt"):
        return xml_escaped(text)
    if name == "json":
        return json.dumps(text, ensure_ascii=False)[1:-1]
    return None


def pandoc_title(text):
    words = [{"t": "Str", "c": word} for word in text.split(" ") if word]
    return " ".join(word["c"] for word in words)


PLAIN = "plainname"


def check_name(run, folder, name, plain_outputs):
    path = os.path.join(folder.encode(), name)
    os.rename(os.path.join(folder, PLAIN), path)
    try:
        for form in FORMATS:
            output = run("convert", "-t", form, path)
            title = escaped(name)
            if form == "pandoc":
                found = json.loads(output)["meta"]["title"]["c"]
                words = "".join(part.get("c", " ") for part in found)
                words = " ".join(words.split(" ")).strip()
                yield from differs(form, name, pandoc_title(title), words)
                continue
            replaced = in_format(form, title)
            wanted = plain_outputs[form]
            if replaced is not None:
                wanted = wanted.replace(PLAIN, replaced)
            yield from differs(form, name, wanted, output)
            if form == "fodt":
                xml.etree.ElementTree.fromstring(output)
            elif form == "json":
                yield from differs(form, name, title, json.loads(output)["document"]["title"])
    finally:
        os.rename(path, os.path.join(folder, PLAIN))


def check_manifest(run, folder, names):
    """The names, all in one run: each line's source turns back into one of them."""
    inputs = os.path.join(folder, "in")
    os.mkdir(inputs)
    with open(os.path.join(folder, PLAIN), "rb") as file:
        document = file.read()
    for name in names:
        with open(os.path.join(inputs.encode(), name), "wb") as file:
            file.write(document)
    out = os.path.join(folder, "out")
    run("batch", inputs, "-o", out, "-t", "html", "-q")
    with open(os.path.join(out, "manifest.ndjson"), encoding="utf-8", newline="\n") as file:
        lines = file.read().split("\n")[:-1]
    found = {json.loads(line)["source"] for line in lines}
    wanted = {inputs + "/" + escaped(name) for name in names}
    if found != wanted:
        yield f"manifest: {sorted(found ^ wanted)[:4]}"


def differs(form, name, wanted, found):
    if wanted != found:
        at = next((i for i, pair in enumerate(zip(wanted, found)) if pair[0] != pair[1]), 0)
        yield f"{form} of {name!r}: {found[max(0, at - 30):at + 60]!r}, " \
              f"not {wanted[max(0, at - 30):at + 60]!r}"


# ------------------------------------------------------------------------------ texts ---

TEXTS = MARKUP + [
    "<b>bold</b> <a href='http://evil.example'>x</a> </p></main></body>", "<br/> <hr>", "<?xml?>",
    "<!DOCTYPE html>", "<![CDATA[ x ]]>", "<svg/onload=x>", "</style><script>x</script>",
    "&amp; &lt; &#42; &#x3C; &nbsp; &copy &notit;", "http://evil.example/a?b=c&d=e",
    "https://evil.example ftp://evil.example", "<http://evil.example>", "<1@evil.example>",
    "<+@evil.example>", "<a.b+c@evil.example>", "<mailto:a@evil.example>", "<javascript:x>",
    "www.evil.example", "(www.evil.example)", "WWW.EVIL.EXAMPLE", "[x](javascript:y)", "![i](u)",
    "[x]: http://evil.example", "[x]", "[^1]", "[^1]: note", "x[^1]", "^[inline]", "[[wiki]]",
    "`code`", "``` fence", "~~~ fence", "~~gone~~", "# heading", "####### x", "heading", "=====",
    "-----", "***", "* * *", "_ _ _", "- item", "+ item", "- [ ] task", "1. item", "1) item",
    "12345. item", "> quote", ">quote", "| a | b |", "|---|---|", "a | b", ":--", "    code",
    "\\", "\\*x\\*", "*x*", "**x**", "_x_", "__x__", "a*b*c", "$x^2$", "$$x$$", "H~2~O x^2^",
    "{.class}", "::: div", ": definition", "Term", "%title", "---", "...", "@cite", "@evil",
    "#tag", ":emoji:", "<details>", "<!-- x -->", "<x@y>", "\"quoted\"", "{\"json\": [1]}",
    "\\u0041 \\n \\x41", "&#8238;", "&#x202E;evil"]


def description(kind):
    lines = [f"kind: {kind}", "joins: allowed", "header: <b>&amp; www.evil.example",
             "footer: [x](y) <1@evil.example>", "---"]
    for text in TEXTS:
        for around in (text, f"{{b}}{braced(text)}{{/b}}", f"x{text}x {text}"):
            line = around if around.startswith("{b}") else braced(around)
            lines.append(("@" if line.startswith("@") else "") + line.strip(" ") + "\\")
    for begin in range(0x80, 0x100, 4):
        lines.append(" ".join(f"a{{x{byte:02X}}}b" for byte in range(begin, begin + 4)) + "\\")
    return "\n".join(lines) + "\n"


def braced(text):
    return text.replace("{", "{{")


HTML_ELEMENTS = {"html", "head", "meta", "title", "style", "body", "main", "header", "footer", "p",
                 "hr", "br", "span", "b", "i", "u", "sub", "sup"}
HTML_ATTRIBUTES = {"style": r"--[a-z]+:\d+(;--[a-z]+:\d+)*",
                   "class": "(center|right|double|word|tab|page| )+"}
MARKDOWN_ELEMENTS = {"p", "em", "strong", "hr"}


class Elements(html.parser.HTMLParser):
    """The visible text of HTML, and what is not allowed in it."""

    def __init__(self, elements, attributes):
        super().__init__()
        self.elements, self.attributes = elements, attributes
        self.text, self.faults, self.unseen = [], [], None

    def handle_starttag(self, tag, attrs):
        if tag not in self.elements:
            self.faults.append(f"element {tag} {attrs}")
        for name, value in attrs:
            if tag != "meta" and not re.fullmatch(self.attributes.get(name, r"(?!)"), value or ""):
                self.faults.append(f"attribute {name}={value} of {tag}")
        if tag in ("style", "title"):
            self.unseen = tag

    def handle_endtag(self, tag):
        if tag == self.unseen:
            self.unseen = None

    def handle_data(self, data):
        if self.unseen is None:
            self.text.append(data)

    def handle_comment(self, data):
        self.faults.append(f"comment {data}")

    def handle_pi(self, data):
        self.faults.append(f"instruction {data}")

    def handle_decl(self, decl):
        if decl != "DOCTYPE html":
            self.faults.append(f"declaration {decl}")

    def unknown_decl(self, data):
        self.faults.append(f"declaration {data}")


def read_html(page, elements=HTML_ELEMENTS, attributes=None):
    parser = Elements(elements, HTML_ATTRIBUTES if attributes is None else attributes)
    parser.feed(page)
    parser.close()
    return "".join(parser.text), parser.faults


def read_fodt(page):
    office = "{urn:oasis:names:tc:opendocument:xmlns:office:1.0}"
    text = "{urn:oasis:names:tc:opendocument:xmlns:text:1.0}"
    style = "{urn:oasis:names:tc:opendocument:xmlns:style:1.0}"
    root = xml.etree.ElementTree.fromstring(page)
    parts = [part for name in (f"{style}header", f"{office}body", f"{style}footer")
             for part in root.iter(name)]
    allowed = {f"{text}{name}" for name in ("p", "span", "s", "tab", "line-break")} | \
        {f"{office}body", f"{office}text", f"{style}header", f"{style}footer"}
    faults = [f"element {node.tag}" for part in parts for node in part.iter()
              if node.tag not in allowed]
    return "".join("".join(part.itertext()) for part in parts), faults


def read_json(page):
    blocks = json.loads(page)["blocks"]
    return "".join(run.get("text", "") for block in blocks for run in block.get("runs", [])), []


def filtered(command, text):
    return subprocess.run(command, input=text, capture_output=True, check=True, encoding="utf-8",
                          errors="strict").stdout


def read_pandoc(page):
    # Behind an arrow pandoc asks for a glyph that is no picture.
    found = filtered(["pandoc", "-f", "json", "-t", "html", "--wrap=none"], page)
    return read_html(found.replace("\uFE0E", ""),
                     MARKDOWN_ELEMENTS | {"u", "sub", "sup", "div", "span", "br"},
                     {"class": "[a-z-]*", "style": "[a-z-]+: ?[a-z]+;?"})


def read_cmark(page):
    return read_html(filtered(["cmark", "--unsafe"], page), MARKDOWN_ELEMENTS, {})


def without_mail(page):
    """GitHub's Markdown makes links of bare mail addresses however they are written."""
    return re.sub(r'<a href="mailto:([^"]*)">((?:mailto:)?\1)</a>', r"\2", page)


def read_github(page):
    extensions = [part for name in ("table", "strikethrough", "autolink", "tasklist", "footnotes")
                  for part in ("-e", name)]
    return read_html(without_mail(filtered(["cmark-gfm", "--unsafe", *extensions], page)),
                     MARKDOWN_ELEMENTS, {})


READERS = [("html", read_html), ("fodt", read_fodt), ("json", read_json), ("pandoc", read_pandoc),
           ("markdown", read_cmark), ("markdown", read_github)]


def letters(text):
    """What every format has: all but spaces, and the order in which lines of the page stand."""
    return collections.Counter("".join(text.split()))


def check_texts(run, document, charset):
    wanted = letters(run("text", "--charset", charset, "--wrap", "0", "--commands", document))
    for form, read in READERS:
        options = [] if form == "json" else ["--commands"]
        page = run("convert", "-t", form, "--charset", charset, *options, document)
        text, faults = read(page)
        for fault in faults:
            yield f"{form} by {read.__name__}, {charset}: {fault}"
        difference = letters(text) - wanted | wanted - letters(text)
        if difference:
            yield f"{form} by {read.__name__}, {charset}: letters differ: {difference}"


def main(pfsdoc, pfsbuild):
    def run(*arguments):
        return subprocess.run([pfsdoc, *arguments], capture_output=True, check=True).stdout.decode()

    faults = []
    names = [*character_names(), *BROKEN, *(text.encode() for text in MARKUP)]
    with tempfile.TemporaryDirectory() as folder:
        for kind in (1014, 1017):
            source = os.path.join(folder, "description")
            with open(source, "w", encoding="utf-8") as file:
                file.write(description(kind))
            document = os.path.join(folder, f"{kind}.doc")
            subprocess.run([pfsbuild, source, document], check=True)
            for charset in ("437", "850", "1252", "1255", "1256", "1258", "koi8-r"):
                faults += check_texts(run, document, charset)
        plain = os.path.join(folder, PLAIN)
        with open(source, "w", encoding="utf-8") as file:
            file.write("kind: 1014\n---\nText\n")
        subprocess.run([pfsbuild, source, plain], check=True)
        outputs = {form: run("convert", "-t", form, plain) for form in FORMATS}
        for name in names:
            faults += check_name(run, folder, name, outputs)
        faults += check_manifest(run, folder, names)
    for fault in faults[:40]:
        print(f"injection: {fault}", file=sys.stderr)
    print(f"injection: {len(names)} names, {len(TEXTS)} texts, {len(faults)} faults")
    sys.exit(1 if faults else 0)


main(*sys.argv[1:])
