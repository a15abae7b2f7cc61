#!/usr/bin/env bash
# html.sh PFSDOC SAMPLES: tidy has no complaint about any sample's HTML; its stylesheet has the
# hash that the page allows; and a browser prints it as the document's own pages, character by
# character: see html_pages.py.
set -euo pipefail
pfsdoc=$1
samples=$2
here=$(cd "$(dirname "$0")" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
failed=0

complain() {
    echo "html: $*" >&2
    failed=1
}

check_stylesheet() { # PAGE
    local allowed actual
    allowed=$(sed -n "s/.*style-src-elem 'sha256-\([^']*\)'.*/\1/p" "$1")
    # Between the tags, the line end behind the first one included.
    actual=$(sed -n '/^<style>$/,/^<\/style>$/p' "$1" | sed -e '1s/.*//' -e '$d' \
        | openssl dgst -sha256 -binary | openssl base64)
    [ "$allowed" = "$actual" ] || complain "$1: the stylesheet is not the one that is allowed"
}

print_page() { # PAGE PDF
    # It always writes to standard error; what counts is whether there is a PDF.
    chromium --headless --no-sandbox --disable-gpu --user-data-dir="$work/browser" \
        --no-pdf-header-footer --print-to-pdf="$2" "$1" 2>"$work/browser.log" \
        && [ -s "$2" ] || { cat "$work/browser.log" >&2; return 1; }
}

count=0
for document in "$samples"/*/*.doc; do
    name=$(basename "$(dirname "$document")")-$(basename "$document" .doc)
    page=$work/$name.html
    "$pfsdoc" convert -t html -o "$page" "$document"
    # A span that contains a tab is not empty, though tidy claims so.
    tidy -q -e --drop-empty-elements no "$page" >"$work/tidy.log" 2>&1 && [ ! -s "$work/tidy.log" ] \
        || complain "$page: tidy says: $(cat "$work/tidy.log")"
    check_stylesheet "$page"
    print_page "$page" "$work/$name.pdf" || { complain "$page: cannot be printed"; continue; }
    /usr/bin/python3 "$here/html_pages.py" "$work/$name.pdf" "$page" "${document%.doc}.text" || failed=1
    count=$((count + 1))
done
# Double spacing has its room below the line, as OpenDocument has it in odf.sh.
/usr/bin/python3 "$here/odf_spacing.py" "$work/1014-professional-write-1-letter.pdf" \
    Thyme 24 Sow 24 pair 24 They 12 bean || failed=1
[ "$count" -gt 0 ] || complain "there are no samples in $samples"
echo "html: $count documents"
exit "$failed"
