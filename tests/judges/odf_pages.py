#!/usr/bin/python3
"""odf_pages.py TEXT EXPORT PDF: whether LibreOffice shows what the text says.

TEXT is a sample as `pfsdoc text` writes it, EXPORT the text that LibreOffice exports, without
headers and footers, and PDF its pages. The exported words must be the body's. Each page must
begin with the header and end with the footer, and what stands between must be, in a letter,
the body's lines at their columns. A centred line may be half a column off on a page.

Prose is compared by its characters alone: LibreOffice breaks lines at hyphens too, and
pdftotext takes raised and lowered words for lines of their own. It must fit on as many pages
as it would in double spacing.
"""
import pathlib
import subprocess
import sys

COLUMN_POINTS = "7.2"
PAGE_LINES = 54
BYTE_ORDER_MARK = "\ufeff"


def parts_of(text):
    """The header's lines, the pages of the body, the footer's lines."""
    lines = text.rstrip("\n").split("\n")
    first = lines.index("")
    last = len(lines) - 1 - lines[::-1].index("")
    body = "\n".join(lines[first + 1:last])
    return lines[:first], body.split("\f"), lines[last + 1:]


def shown_lines(page):
    return [line.rstrip() for line in page.split("\n") if line.strip()]


def words_of(lines):
    return " ".join(lines).split()


def characters_of(lines):
    return sorted("".join(words_of(lines)))


def most_pages(body):
    return sum(1 + 2 * page.count("\n") // PAGE_LINES for page in body)


def pdf_pages(pdf):
    command = ["pdftotext", "-fixed", COLUMN_POINTS, "-enc", "UTF-8", pdf, "-"]
    text = subprocess.run(command, check=True, capture_output=True).stdout.decode()
    return text.split("\f")[:-1]


def column(line):
    return len(line) - len(line.lstrip())


def check(condition, what):
    if not condition:
        sys.exit(f"{sys.argv[3]}: {what}")


def check_lines(expected, shown):
    check(len(expected) == len(shown), f"{len(shown)} lines instead of {len(expected)}")
    for want, have in zip(expected, shown):
        check(want.strip() == have.strip(), f"shows\n{have}\ninstead of\n{want}")
        check(abs(column(want) - column(have)) <= 1, f"not at its column:\n{have}\n{want}")


def main():
    header, body, footer = parts_of(pathlib.Path(sys.argv[1]).read_text())
    export = pathlib.Path(sys.argv[2]).read_text().removeprefix(BYTE_ORDER_MARK)
    body_lines = [line for page in body for line in shown_lines(page)]
    check(words_of(export.split("\n")) == words_of(body_lines), "other words are exported")

    pages = [shown_lines(page) for page in pdf_pages(sys.argv[3])]
    check(len(body) <= len(pages) <= most_pages(body), f"has {len(pages)} pages")
    shown_body = []
    for page in pages:
        check_lines(header, page[:len(header)])
        check_lines(footer, page[-len(footer):])
        shown_body.append(page[len(header):-len(footer)])
    if "letter" in pathlib.Path(sys.argv[1]).name:
        check(len(pages) == len(body), f"{len(pages)} pages instead of {len(body)}")
        for expected, shown in zip(body, shown_body):
            check_lines(shown_lines(expected), shown)
    else:
        shown = [line for page in shown_body for line in page]
        check(characters_of(shown) == characters_of(body_lines), "other characters are shown")


main()
