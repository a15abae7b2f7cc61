"""The small changes that scripts/mutate makes in the module's sources.

The idea: a change is a stretch of a source file and the text put in its place. The operators
find their stretches with regular expressions, which clang-format's layout makes possible: a
binary operator has spaces around it, a statement begins after ; { } or a label.

What complicates it: comments, directives and static assertions are not code, and operators for
code must not look into strings. So each file is read together with its mask, a copy of the same
length in which these are spaces.
"""
import hashlib
import re
from collections import Counter
from dataclasses import dataclass, replace
from functools import cached_property

NOT_CODE = re.compile(
    r"//[^\n]*"
    r"|/\*.*?\*/"
    r"|^[ \t]*#(?:\\\n|[^\n])*"
    r"|static_assert\([^;]*;"
    r'|extern "C"'
    r'|"(?:\\.|[^"\\\n])*"',
    re.MULTILINE | re.DOTALL,
)


def masked(text):
    """The text with all that is not code blanked; quotation marks stay."""

    def blank(match):
        found = match.group()
        if found.startswith('"'):
            return '"' + " " * (len(found) - 2) + '"'
        return re.sub(r"[^\n]", " ", found)

    return NOT_CODE.sub(blank, text)


def bare(line):
    """A line without its indentation and the comment at its end."""
    return re.sub(r"\s+// .*$", "", line).strip()


@dataclass(frozen=True)
class Source:
    path: str
    text: str

    @cached_property
    def code(self):
        return masked(self.text)


@dataclass(frozen=True)
class Mutant:
    source: Source
    start: int
    end: int
    replacement: str
    ordinal: int = 0  # among those of the same key

    @property
    def path(self):
        return self.source.path

    @property
    def text(self):
        """The whole changed file; it has as many lines as the source has."""
        text = self.source.text
        lost_lines = text.count("\n", self.start, self.end) - self.replacement.count("\n")
        return text[: self.start] + self.replacement + "\n" * lost_lines + text[self.end :]

    @property
    def line(self):
        return self.source.text.count("\n", 0, self.start) + 1

    @cached_property
    def difference(self):
        """The lines taken away and the lines put there, without their indentation."""
        pairs = zip(self.source.text.split("\n"), self.text.split("\n"))
        changed = [(bare(old), bare(new)) for old, new in pairs if old != new]
        return (
            tuple(old for old, _ in changed if old),
            tuple(new for _, new in changed if new),
        )

    @property
    def function(self):
        """The name of the function that is changed, empty outside of all. What stands at the
        beginning of a line, its opening brace apart, opens a function or something else."""
        for line in reversed(self.source.code[: self.start].split("\n")):
            if re.match(r"[^\s{]", line):
                found = re.match(r"\w[^=;]*?(\w+)\([^;]*$", line)
                return found.group(1) if found else ""
        return ""

    @property
    def key(self):
        """What stays the same when lines are added elsewhere."""
        return (self.path, self.function, *self.difference)

    @property
    def identity(self):
        return hashlib.sha256(repr((self.key, self.ordinal)).encode()).hexdigest()[:8]


def replacements(pattern, *texts):
    """An operator that puts each text in the place of the pattern's first group."""
    compiled = re.compile(pattern, re.MULTILINE)

    def operator(source):
        for match in compiled.finditer(source.code):
            for text in texts:
                yield match.start(1), match.end(1), match.expand(text)

    return operator


def binary(sign, *others):
    return replacements(rf"(?<=\s)({re.escape(sign)})(?=\s)", *others)


SIGNS = [
    binary("==", "!="),
    binary("!=", "=="),
    binary("<", "<=", ">="),
    binary("<=", "<", ">"),
    binary(">", ">=", "<="),
    binary(">=", ">", "<"),
    binary("&&", "||"),
    binary("||", "&&"),
    binary("&", "|"),
    binary("|", "&"),
    binary("^", "|"),
    binary("<<", ">>"),
    binary("+", "-"),
    binary("-", "+"),
    binary("*", "+"),
    binary("+=", "-="),
    binary("|=", "&=", "="),
    binary("&=", "|=", "="),
    binary("^=", "|="),
    replacements(r"(\+\+)", "--"),
    replacements(r"(--)", "++"),
    replacements(r"(!)[\w(]", ""),
    replacements(r"(~)", ""),
    replacements(r"\b(true)\b", "false"),
    replacements(r"\b(false)\b", "true"),
    replacements(r"(?:[(,:?=]|return) (-)\d", ""),
]

WIDTHS = [
    replacements(r"static_cast<(uint8_t)>", "int8_t", "uint16_t"),
    replacements(r"static_cast<(uint16_t)>", "uint8_t", "uint32_t"),
    replacements(r"static_cast<(int16_t)>", "uint16_t", "int32_t"),
    replacements(r"^ +(uint8_t) \w+ =", "uint16_t"),
    replacements(r"^ +(uint16_t) \w+ =", "uint32_t"),
]


def numbers(source):
    """Each number one up, and one bit or one down."""
    for match in re.finditer(r"\b(0[xX][0-9A-Fa-f]+|\d+)\b(?!')", source.code):
        written = match.group()
        value = int(written, 0)
        if written[1:2] in ("x", "X"):
            values = {value + 1, value ^ (1 << max(value.bit_length() - 1, 0))}
            form = "0x%02X"
        else:
            values = {value + 1, max(value - 1, 0)}
            form = "%d"
        for other in sorted(values - {value}):
            yield match.start(), match.end(), form % other


def characters(source):
    for match in re.finditer(r"'([A-Za-z0-9*: ])'", source.code):
        yield match.start(1), match.end(1), chr(ord(match.group(1)) + 1)


def strings(source):
    """The first and the last letter or digit of each string."""
    for match in re.finditer(r'"[^"\n]*"', source.code):
        start = match.start()
        inside = re.sub(r"\\.", "  ", source.text[start : match.end()])
        places = [found.start() for found in re.finditer(r"\w", inside)]
        for place in sorted({place for place in places[:1] + places[-1:]}):
            changed = chr(ord(inside[place]) + 1)
            yield start + place, start + place + 1, changed


def closing(code, opening):
    """The place after the bracket that closes the one at `opening`."""
    depth = 0
    for place in range(opening, len(code)):
        depth += {"(": 1, ")": -1}.get(code[place], 0)
        if depth == 0:
            return place + 1
    return len(code)


def conditions(source):
    """Conditions of if, while and ?: the other way round; comparisons are turned elsewhere."""
    for match in re.finditer(r"\b(?:if|while) \(", source.code):
        start = match.end() - 1
        end = closing(source.code, start)
        condition = source.code[start:end]
        if re.search(r" (&&|\|\|)\s", condition) or not re.search(r" [!=<>]+ ", condition):
            yield start, end, "(!" + source.text[start:end] + ")"
    before = r"(?:(?<![!=<>])=|[(,]|return)\s"
    for match in re.finditer(before + r"([a-z]\w*(?:\([^()]*\))?) \? ", source.code):
        yield match.start(1), match.end(1), "!" + match.group(1)


LABEL = r"(?:^ *(?:case [^;?{}]*|default): )"
STATEMENT = re.compile(
    rf"(?:[;{{}}]\s+|:\n\s+|(?:{LABEL}))"
    r"((?:[*\w.:\[\]]|->)+(?:\(| (?:[|&^+-]?=) )[^;{}]*;|(?:\+\+|--)[\w.>-]+;|break;)",
    re.MULTILINE,
)


def statements(source):
    """Each call, assignment, count and break left out, a declaration excepted."""
    place = 0
    while match := STATEMENT.search(source.code, place):
        if not match.group(1).startswith("return"):
            yield match.start(1), match.end(1), ";"
        place = match.end() - 1


def swapped(source, first, second):
    between = source.text[first.end(1) : second.start(1)]
    return first.start(1), second.end(1), second.group(1) + between + first.group(1)


def case_labels(source):
    """Each two neighbouring labels of a switch change places."""
    labels = list(re.finditer(r"\bcase ([^:?]+(?:::\w+)?):(?!:)", source.code))
    for first, second in zip(labels, labels[1:]):
        if "switch" not in source.code[first.end() : second.start()]:
            yield swapped(source, first, second)


def answers(source):
    """Each enumerator or named value that is returned becomes the next one that the file has."""
    for pattern in (r"\b([A-Z]\w+)::(\w+)\b(?!\()", r"\b(return )(\w+);"):
        found = list(re.finditer(pattern, source.code))
        for match in found:
            names = [other[2] for other in found if other[1] == match[1]]
            names = list(dict.fromkeys(name for name in names if not name.isdigit()))
            if match[2] in names and len(names) > 1:
                other = names[(names.index(match[2]) + 1) % len(names)]
                yield match.start(2), match.end(2), other


OPERATORS = [
    *SIGNS,
    *WIDTHS,
    numbers,
    characters,
    strings,
    conditions,
    statements,
    case_labels,
    answers,
]


def mutants(source):
    """All changes of a file, in its order and without repetitions."""
    changes = {change for operator in OPERATORS for change in operator(source)}
    found = {}
    ordinals = Counter()
    for change in sorted(changes):
        mutant = Mutant(source, *change)
        if mutant.text == source.text or mutant.text in found:
            continue
        found[mutant.text] = replace(mutant, ordinal=ordinals[mutant.key])
        ordinals[mutant.key] += 1
    return list(found.values())
