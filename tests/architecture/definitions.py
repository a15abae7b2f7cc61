#!/usr/bin/python3
"""A header's functions are defined in the file of its name.

Whoever reads a declaration then knows where to look for its code. Sources are read in the form
that clang-format gives them: a definition begins in the first column, its body with a line that
is nothing but a brace. Each definition outside of nameless namespaces must be declared in the
header that is named as its file, in the same folder or among the public headers; a member, by
its class.

usage: definitions.py PROJECT_FOLDER
"""

import pathlib
import re
import sys

FOLDERS = ("lib", "cli", "sandbox", "batch")
PUBLIC_HEADERS = "include/pfsdoc"

NAMELESS_NAMESPACE = re.compile(r"^namespace \{$.*?^\} // namespace$", re.DOTALL | re.MULTILINE)
COMMENT = re.compile(r"//[^\n]*")
DEFINITION = re.compile(
    r"^(?!namespace|struct |class |enum |union )(?=\w)"  # begins in the first column
    r"(?:[^\n;{}]|\n(?!\n))*?"  # result, on one line or several
    r"\b(?P<name>(?:\w+::)*~?(?:operator[^\s(]+|\w+))\("
    r"(?:[^;{}]|\{\})*?\n\{$",  # parameters and initializers, then the body
    re.MULTILINE,
)


def external_definitions(source):
    text = COMMENT.sub("", NAMELESS_NAMESPACE.sub("", source))
    return [match.group("name") for match in DEFINITION.finditer(text)]


def is_declared(name, header):
    owner, _, _ = name.rpartition("::")
    if owner:
        outermost = owner.split("::")[0]
        return re.search(rf"\b(?:class|struct)\b[^;{{]*\b{outermost}\b", header) is not None
    return re.search(rf"\b{re.escape(name)}\(", header) is not None


def headers_of(project, source):
    name = source.with_suffix(".h").name
    folders = (source.parent, project / PUBLIC_HEADERS)
    return "".join((folder / name).read_text() for folder in folders if (folder / name).exists())


def misplaced(project):
    count = 0
    for folder in FOLDERS:
        for source in sorted((project / folder).rglob("*.cpp")):
            header = headers_of(project, source)
            for name in external_definitions(source.read_text()):
                count += 1
                if name != "main" and not is_declared(name, header):
                    yield f"{source.relative_to(project)}: {name} is not declared in {source.stem}.h"
    if count < 100:
        yield f"found only {count} definitions: this script no longer understands the sources"


def main():
    faults = list(misplaced(pathlib.Path(sys.argv[1])))
    print("\n".join(faults) or "every function is defined in the file of its header")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
