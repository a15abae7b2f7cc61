#!/usr/bin/env bash
# odf.sh PFSDOC SAMPLES: LibreOffice reads every sample as odt and as fodt, and the text and pages
# that it makes are compared with the samples' own texts: odf_pages.py. The same for two long
# documents, compared with the output of `pfsdoc text`. Before that, packages must be packed as
# OpenDocument requires, and all XML must be well-formed.
set -euo pipefail
pfsdoc=$1
samples=$2
here=$(dirname "$(realpath -- "$0")")
for tool in soffice xmllint unzip pdftotext pdfinfo python3; do
    command -v "$tool" >/dev/null || { echo "$tool is not installed" >&2; exit 1; }
done
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

fail() {
    echo "$*" >&2
    exit 1
}

# check_package FILE
check_package() {
    local entries entry
    entries=$(unzip -Z1 "$1")
    [ "${entries%%$'\n'*}" = mimetype ] || fail "$1: mimetype is not the first entry"
    [ "$(head -c 77 "$1" | tail -c 47)" = mimetypeapplication/vnd.oasis.opendocument.text ] \
        || fail "$1: mimetype is not stored as it is"
    unzip -tqq "$1" || fail "$1: cannot be unpacked"
    for entry in META-INF/manifest.xml content.xml styles.xml meta.xml; do
        unzip -p "$1" "$entry" | xmllint --noout - || fail "$1: $entry is not well-formed"
    done
}

count=0
# add NAME DOCUMENT TEXT
add() {
    "$pfsdoc" convert -o "$work/$1.package.odt" "$2"
    "$pfsdoc" convert -o "$work/$1.flat.fodt" "$2"
    check_package "$work/$1.package.odt"
    xmllint --noout "$work/$1.flat.fodt" || fail "$1.flat.fodt is not well-formed"
    cp "$3" "$work/$1.text"
    count=$((count + 1))
}

for document in "$samples"/*/*.doc; do
    kind=$(basename "$(dirname "$document")")
    add "$kind.$(basename "$document" .doc)" "$document" "${document%.doc}.text"
done
[ "$count" -gt 0 ] || fail "there are no samples in $samples"

# A document that is not held in memory until it is written: prose repeated thirty times. In its
# kind the body follows a header of fixed size.
prose=$samples/1012-pfs-write-a/prose.doc
header_size=1025
{
    head -c "$header_size" "$prose"
    for ((i = 0; i < 30; ++i)); do
        tail -c +$((header_size + 1)) "$prose" | head -c -1
    done
    tail -c 1 "$prose"
} >"$work/long.doc"
"$pfsdoc" text "$work/long.doc" >"$work/long.expected"
add long "$work/long.doc" "$work/long.expected"

# Another one, in which each paragraph has tab stops of its own, and so a style: stop n of a
# paragraph is set if bit n of its number is. A wrong style moves a line. It continues where a
# letter ends, and is compared as one.
letter=$samples/1058-pfs-first-choice-3/letter.doc
paragraphs=1000
page_paragraphs=40
stops=10
{
    head -c -1 "$letter"
    for ((i = 0; i < paragraphs; ++i)); do
        [ $((i % page_paragraphs)) -ne 0 ] || printf '\bpage\r'
        ruler=
        for ((stop = 0; stop < stops; ++stop)); do
            [ $((i >> stop & 1)) -eq 1 ] && ruler+=---T- || ruler+=-----
        done
        printf '\f\0\0\0          [%s------------]\rP\001\ta\t%d\r' "$ruler" "$i"
    done
    tail -c 1 "$letter"
} >"$work/rulers.doc"
"$pfsdoc" text "$work/rulers.doc" >"$work/rulers.expected"
add long-letter "$work/rulers.doc" "$work/rulers.expected"
styles=$(grep -o 'style:name="[^"]*-tabs[0-9]*"' "$work/long-letter.flat.fodt" | sort -u | wc -l)
[ "$styles" -ge "$paragraphs" ] || fail "$styles styles for $paragraphs paragraphs"

# One start for all files, with a separate profile.
convert() {
    soffice --headless "-env:UserInstallation=file://$work/profile" \
        --convert-to "$1" --outdir "$work" "$work"/*.odt "$work"/*.fodt >"$work/log" 2>&1 \
        || { cat "$work/log" >&2; fail "LibreOffice failed"; }
}
convert txt:Text
convert pdf
for text in "$work"/*.text; do
    name=${text%.text}
    pdfinfo "$name.package.pdf" | grep -q '^Page size: *612 x 792 pts' \
        || fail "$name.package.pdf: not on paper of 8.5 by 11 inches"
    for style in Bold Italic; do # every sample has both
        pdffonts "$name.package.pdf" | grep -q -- "-.*$style" \
            || fail "$name.package.pdf: nothing is $style"
    done
    cmp "$name.package.txt" "$name.flat.txt"
    /usr/bin/python3 "$here/odf_pages.py" "$text" "$name.package.txt" "$name.package.pdf"
    /usr/bin/python3 "$here/odf_pages.py" "$text" "$name.flat.txt" "$name.flat.pdf"
done

# A double-spaced paragraph between single-spaced ones: each of its lines has its room below it.
for form in package flat; do
    /usr/bin/python3 "$here/odf_spacing.py" "$work/1014-professional-write-1.letter.$form.pdf" \
        Thyme 24 Sow 24 pair 24 They 12 bean
done
echo "$count documents in two formats"
