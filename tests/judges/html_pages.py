#!/usr/bin/python3
"""html_pages.py PDF HTML TEXT: is the printed page the document's own page?

HTML is a document in the html format, PDF the same as a browser printed it, and TEXT the
document in the text format, whose rows and columns are the document's own. Each letter of
the PDF is put back into the row and the column where it was printed; then

  - the first rows of every page are the header lines, the last ones the footer lines,
  - between them the rows are those of TEXT, in order and letter by letter in the same
    columns. TEXT does not tell double spacing: where HTML has it, empty rows do not count,
  - a form feed in TEXT ends a page, and a page that none ends is full.

Tells the first thing that is wrong, and fails.
"""
import html
import re
import subprocess
import sys

ROW = 12.0  # points: 6 rows per inch
PAGE_ROWS = 66
MARGIN_ROWS = 6  # above and below the body
# Rows at the end of a full page that may be empty in double spacing: a row, its space, and
# an empty paragraph with its space.
FREE_ROWS = 4
WORD = re.compile(
    r'<word xMin="([\d.]+)" yMin="([\d.]+)" xMax="([\d.]+)" yMax="([\d.]+)">(.*?)</word>')


def fail(words):
    sys.exit(f"html_pages: {sys.argv[1]}: {words}")


def printed_words(pdf):
    """For each page its words: left and right end, the middle of their height, letters."""
    found = subprocess.run(["pdftotext", "-bbox", pdf, "-"], check=True, capture_output=True,
                           encoding="utf-8").stdout
    return [[(float(left), float(right), (float(top) + float(bottom)) / 2, html.unescape(letters))
             for left, top, right, bottom, letters in WORD.findall(page)]
            for page in found.split("<page ")[1:]]


def column_width(pages):
    """The font is of fixed pitch, and the longest word tells it best."""
    left, right, _, letters = max((w for page in pages for w in page), key=lambda w: len(w[3]))
    return (right - left) / len(letters)


def page_rows(words, pitch):
    """A page's rows as text. Half a column, which centring may leave, counts as none."""
    rows = [{} for _ in range(PAGE_ROWS)]
    for left, _, middle, letters in words:
        column = int(left / pitch + 0.25)
        for place, letter in enumerate(letters):
            rows[int(middle / ROW)][column + place] = letter
    return ["".join(row.get(i, " ") for i in range(max(row, default=-1) + 1)) for row in rows]


def filled(rows):
    return [row.rstrip() for row in rows if row.strip()]


def compare(what, actual, expected):
    for number, (printed, wanted) in enumerate(zip(actual, expected), 1):
        if printed != wanted:
            fail(f"{what}, row {number}: printed\n{printed}\ninstead of\n{wanted}")
    if len(actual) != len(expected):
        fail(f"{what}: {len(actual)} rows instead of {len(expected)}")


def take_rows(number, body, stretch):
    """Takes the page's rows off the stretch that it shows, and returns what is left of it."""
    shown = stretch[:len(body)]
    compare(f"page {number}", [row.rstrip() for row in body], shown + [""] * (len(body) - len(shown)))
    return stretch[len(body):]


def take_filled_rows(number, body, stretch):
    """The same where rows are spaced double."""
    shown = filled(body)
    compare(f"page {number}", shown, filled(stretch)[:len(shown)])
    left = filled(stretch)[len(shown):]
    if left and not filled(body[-FREE_ROWS:]):
        fail(f"page {number} ends early, before\n{left[0]}")
    return left


def check_pages(pages, header, footer, stretches, take):
    for number, page in enumerate(pages, 1):
        compare(f"page {number}, header", filled(page[:MARGIN_ROWS]), header)
        compare(f"page {number}, footer", filled(page[-MARGIN_ROWS:]), footer)
        if not stretches:
            fail(f"page {number} should not be there")
        left = take(number, page[MARGIN_ROWS:-MARGIN_ROWS], stretches[0])
        stretches = [left] * bool(left) + stretches[1:]
    if stretches:
        fail(f"{sum(map(len, stretches))} rows are missing after the last page")


def running_lines(page, element):
    block = re.search(f"<{element}>(.*?)</{element}>", page, re.S)
    return block.group(1).count("<p") if block else 0


def main(pdf, html_file, text_file):
    with open(html_file, encoding="utf-8") as file:
        page = file.read()
    with open(text_file, encoding="utf-8") as file:
        lines = file.read().split("\n")[:-1]
    head = running_lines(page, "header")
    foot = running_lines(page, "footer")
    header, footer = lines[:head], lines[len(lines) - foot:]
    # An empty line separates the body from both.
    body = lines[head + bool(head):len(lines) - foot - bool(foot)]
    stretches = [stretch.split("\n")[:-1] for stretch in "\n".join(body + [""]).split("\f")]
    words = printed_words(pdf)
    pitch = column_width(words)
    check_pages([page_rows(page_words, pitch) for page_words in words], header, footer, stretches,
                take_filled_rows if 'class="double"' in page else take_rows)


main(*sys.argv[1:])
