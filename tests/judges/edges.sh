#!/usr/bin/env bash
# edges.sh PFSDOC SAMPLES PFSBUILD: documents with margins at the edges, and words longer than a
# line, lie within their screen and their paper. Their pages are shown on a phone, on a tablet and
# on a desk, where nothing may need moving sideways and lines must be the same: screens.html. HTML
# and OpenDocument are printed, and no word may come near the paper's edge: edges.py.
set -euo pipefail
pfsdoc=$1
samples=$2
pfsbuild=$3
here=$(dirname "$(realpath -- "$0")")
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

fail() {
    echo "edges: $*" >&2
    exit 1
}

browse() { # CHROMIUM'S ARGUMENT...
    chromium --headless --no-sandbox --disable-gpu --user-data-dir="$work/browser" \
        --allow-file-access-from-files "$@" 2>"$work/browser.log" \
        || { cat "$work/browser.log" >&2; fail "the browser failed"; }
}

prose='The quick brown fox jumps over the lazy dog, and it does so again and again until evening. '
long=$(printf 'x%.0s' {1..10000})
parts=$(printf 'ab-%.0s' {1..3000})

# build NAME KIND LEFT RIGHT [BODY]
build() {
    {
        printf 'kind: %s\nmargins: %s %s\nheader: Head of it\nheader align: right\n' "$2" "$3" "$4"
        printf 'footer: Foot of it\nfooter align: left\n---\n*RIGHT*3 March\n\n'
        printf '%s' "$prose$prose$prose" $'\n\n' "${5:-Dear Sir,}" $'\n\n' 'Yours, the well-known dog' $'\n'
    } >"$work/$1.description"
    "$pfsbuild" "$work/$1.description" "$work/$1.doc"
}
build usual 1013 10 70
build left 1013 1 60
build full 1013 1 85
build right 1013 10 132
build both 1013 1 132
build far 1013 120 132
build widest 1013 1 255
build long 1013 10 70 "before $long after"
build parts 1013 1 132 "before $parts after"
# Paragraphs that leave the page's own margins, to both sides.
build moved 1014 10 70 $'@margins 1 132\n'"$prose$prose$prose"
cp "$samples/1014-professional-write-1/letter.doc" "$work/letter.doc"

for document in "$work"/*.doc; do
    name=${document%.doc}
    "$pfsdoc" convert -o "$name.html" "$document"
    "$pfsdoc" convert -o "$name.odt" "$document"
    "$pfsdoc" text -o "$name.txt" "$document"
    browse --no-pdf-header-footer --print-to-pdf="$name.html.pdf" "$name.html"
done
soffice --headless "-env:UserInstallation=file://$work/profile" --convert-to pdf \
    --outdir "$work" "$work"/*.odt >"$work/log" 2>&1 || { cat "$work/log" >&2; fail "soffice failed"; }
for document in "$work"/*.doc; do
    name=${document%.doc}
    /usr/bin/python3 "$here/edges.py" "$name.html.pdf" "$name.txt"
    /usr/bin/python3 "$here/edges.py" "$name.pdf" "$name.txt"
done

cp "$here/screens.html" "$work"
names=$(cd "$work" && printf '%s\n' *.doc | sed 's/\.doc$//' | paste -sd,)
browse --virtual-time-budget=60000 --dump-dom "file://$work/screens.html?$names" >"$work/dom"
grep -q '<p id="verdict">all fit</p>' "$work/dom" \
    || { grep '<p' "$work/dom" >&2; fail "a page does not fit its screen"; }
echo "edges: $names"
