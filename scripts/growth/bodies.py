"""Documents that are hard to read: a header, and a body made from a short recipe.

A recipe is text, so that a case can be reported, kept and grown to any size:

    KIND HEAD SECTION...

KIND is a file id. HEAD is the name of one of `heads`. Each section takes an equal share of the
body and is a list of the kind's tokens, joined by commas: "a,P0D" repeats them in this order,
"?7:a,P0D" draws from them at random, beginning from the number. A token is a name of `tokens`
below, or bytes in hex with an x before them.
"""

import random

END_OF_DOCUMENT = b"\x0e"
WRITE_A, WRITE_B, PRO_1, PRO_2, ASSISTANT, CHOICE_2, CHOICE_3 = KINDS = (
    "1012", "1013", "1014", "1015", "1016", "1017", "1058")
MOST_TOKENS = 6
PIECE_SIZE = 65536

# The letter is attributed with the bits of the byte behind it.
COMMON = {
    "a": b"a",
    "word": b"word ",
    "space": b" ",
    "spaces": b" " * 40,
    "tab": b"\t",
    "zero": b"\0",
    "long": b"x" * 70,
    "longer": b"x" * 3000,
    "hyphen": b"a-b-",
    "markup": b"<&>",
    "mark": b"*_[`",
    "item": b"1. ",
    "point": b"1.5",
    "N": b"*N*",
    "C": b"*C*",
    "R": b"*r*",
    "P": b"*P *",
    "new": b"*NEW PAGE*",
    "JY": b"*JY Y*",
    "star": b"*",
    "stars": b"* *",
    "graph": b"*G " + b"g" * 90 + b"*",
    "bold": b"\xe1\x02",
    "italic": b"\xe2\x04",
    "underline": b"\xe3\x01",
    "all": b"\xe4\x07",
    "boldtab": b"\x89\x02",
    "boldspace": b"\xa0\x02",
    "linespace": b"\xa0\x01",
    "high": b"\xc4",
}
PRO_ENDS = {"lines": b"\x01" * 2000, "0": b"\0", "1": b"\x01", "2": b"\x02", "3": b"\x03",
            "margins": b"\x07\x05\x01\x0c\x42", "margins2": b"\x07\x05\x01\x0d\x43"}
OF_KIND = {
    WRITE_A: {"end": b"\r", "super": b"\xe5\x08", "sub": b"\xe6\x10"},
    WRITE_B: {"end": b"\r", "super": b"\xe5\x08", "sub": b"\xe6\x10"},
    ASSISTANT: {"end": b"\r", "super": b"\xe5\x08", "pair": b"\x80\x0d"},
    PRO_1: PRO_ENDS,
    PRO_2: PRO_ENDS,
    CHOICE_2: {"end": b"\x0c", "double": b"\x0d", "super": b"\xe5\x40\x04", "chain": b"\x80@@\r"},
    CHOICE_3: {"end": b"\r", "hard": b"\rP\x01", "soft": b"\r\x10", "page": b"\r\x08\r\x10",
               "ruler": b"\r\x0c\0\0\0" + b"--T" * 20 + b"\r\x10",
               "ruler2": b"\r\x0c\0\0\0[" + b"-T" * 30 + b"]\r\x10",
               "T": b"\r\x0c\0\0\0T\r\x10", "super": b"\xe5\x40\x04"},
}


def tokens(kind):
    return COMMON | OF_KIND[kind]


# Margins, counted from 1; columns of tab stops, counted from 0, and whether they are decimal.
THIRTY = tuple(range(11, 69, 2))[:30] + (68,)
heads = {
    "plain": (10, 70, (), False),
    "stops": (10, 70, THIRTY, False),
    "decimal": (10, 70, THIRTY, True),
    "narrow": (2, 3, (2,), False),
    "wide": (1, 250, tuple(range(1, 240, 8)), False),
    "right": (254, 255, (), False),
}


def word(value):
    return value.to_bytes(2, "little")


def write_head(kind, left, right, stops, decimal):
    head = bytearray(1024)
    head[10:14] = word(left) + word(right)
    for i, column in enumerate(stops):
        head[16 + 2 * i] = 0x10 if decimal else 0x0F
        head[172 + 2 * i:174 + 2 * i] = word(column)
    signature = {WRITE_A: b"WRD PC", WRITE_B: b"WRD PC", PRO_1: b"TYPE 3", PRO_2: b"TYPE 4",
                 ASSISTANT: b"IBM   "}[kind]
    head[641:647] = signature
    head[649:650] = {WRITE_A: b"1", WRITE_B: b"2"}.get(kind, b"\0")
    head[822] = head[824] = 1
    return bytes(head) + b"\x0c" + (b"\x01" if kind in (PRO_1, PRO_2) else b"\r")


def choice_head(kind, left, right, stops):
    head = bytearray(512)
    head[0:4] = word(left) + word(right)
    head[9:18] = b"GERBILDOC"
    head[18:19] = b"2" if kind == CHOICE_2 else b"3"
    for column in stops:
        head[366 + column // 8] |= 1 << column % 8
    return bytes(head) + (b"" if kind == CHOICE_2 else b"\x10")


def head_of(kind, name):
    left, right, stops, decimal = heads[name]
    if kind in (CHOICE_2, CHOICE_3):
        return choice_head(kind, left, right, stops)
    return write_head(kind, left, right, stops, decimal)


def bytes_of(kind, token):
    return bytes.fromhex(token[1:]) if token[:1] == "x" else tokens(kind)[token]


def drawn(parts, number):
    """Endless, in pieces of some size."""
    draw = random.Random(number)
    while True:
        yield b"".join(draw.choices(parts, k=4096))


def repeated(parts):
    pattern = b"".join(parts)
    piece = pattern * (PIECE_SIZE // len(pattern) + 1)
    while True:
        yield piece


def section(kind, text, size):
    number, _, names = text.rpartition(":")
    parts = [bytes_of(kind, name) for name in names.split(",")]
    for piece in drawn(parts, int(number[1:])) if number else repeated(parts):
        yield piece[:size]
        size -= len(piece)
        if size <= 0:
            return


def write_document(recipe, size, path):
    """Of that size, or of an empty document's. It is never held: see growth/cost.py."""
    kind, head, *sections = recipe.split(" ")
    start = head_of(kind, head)
    room = max(size - len(start) - 1, 0)
    with open(path, "wb") as file:
        file.write(start)
        for text in sections:
            for piece in section(kind, text, room // len(sections)):
                file.write(piece)
        file.write(END_OF_DOCUMENT)


def prose(kind, size):
    """Shuffled words in paragraphs of ninety, in lines of sixty columns."""
    draw = random.Random(1)
    words = ["the", "of", "letter", "and", "office", "in", "diskette", "that", "is", "invoice",
             "Thursday", "a", "printer", "warehouse", "for", "we", "customer", "agreement"]
    soft = {PRO_1: b"\0", PRO_2: b"\0", CHOICE_2: b"\x0c", CHOICE_3: b"\r\x10"}.get(kind, b"\r")
    hard = {PRO_1: b"\x01", PRO_2: b"\x01", CHOICE_2: b"\x0c\x0c", CHOICE_3: b"\rP\x01"}
    made = [head_of(kind, "plain")]
    length = len(made[0])
    while length < size:
        line = ""
        paragraph = b""
        for text in draw.choices(words, k=90):
            if len(line) + len(text) > 60:
                paragraph += line.rstrip().encode() + soft
                line = ""
            line += text + " "
        paragraph += line.rstrip().encode() + b"." + hard.get(kind, b"\r\r")
        made.append(paragraph)
        length += len(paragraph)
    return b"".join(made) + END_OF_DOCUMENT


def random_section(draw, kind):
    names = list(tokens(kind))
    chosen = [draw.choice(names) for _ in range(draw.randint(1, MOST_TOKENS))]
    start = "?%d:" % draw.randrange(1000) if draw.random() < 0.5 else ""
    return start + ",".join(chosen)


def random_recipe(seed):
    draw = random.Random(seed)
    kind = draw.choice(KINDS)
    sections = [random_section(draw, kind) for _ in range(draw.choice((1, 1, 1, 2, 2, 3)))]
    return " ".join([kind, draw.choice(list(heads)), *sections])
