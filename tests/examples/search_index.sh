#!/usr/bin/env bash
# search_index finds the paragraphs that contain words, and reports their offsets in the file.
#   search_index.sh PROGRAM SAMPLES
set -euo pipefail
program=$(realpath "$1")
here=$(realpath "$(dirname "$0")")
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
index=$work/index
cd "$2"

# finds WORDS: what is found is compared with standard input.
finds()
{
    "$program" "$index" find "$1" >"$work/found"
    diff - "$work/found" || { echo "for: $1"; exit 1; }
}

"$program" "$index" add ./*/letter.doc

finds '"lending desk"' <<'END'
./1013-pfs-write-b/letter.doc:329: County Library · [Lending Desk]
./1013-pfs-write-b/letter.doc:1050: The [Lending Desk]
./1013-pfs-write-b/letter.doc:1767: The [Lending Desk]
END
# In several documents, in headers too, with letters of the code page, with or without accent.
finds 'H2O' <<'END'
./1012-pfs-write-a/letter.doc:1578: ...What comes from the pump is [H2O] and nothing else: do not...
./1013-pfs-write-b/letter.doc:1398: ...the ink is of the [H2O] kind and can be washed out.
./1014-professional-write-1/letter.doc:1365: ...give each pair 1 dm3 of earth and a drop of [H2O].
./1015-professional-write-2/letter.doc:1418: ...There is ginger beer, there is lemonade, and there is [H2O] by...
./1017-pfs-first-choice-2/letter.doc:796: 	Water	3 m3 of [H2O]
./1058-pfs-first-choice-3/letter.doc:1235: A cup of [H2O] with tea in it will be served, by...
END
finds 'cafe' <<'END'
./1012-pfs-write-a/letter.doc:329: Harbour Office · [Café] on the Quay
END
finds 'tide*' <<'END'
./1012-pfs-write-a/letter.doc:485: Moorings · [Tides] · Repairs
./1012-pfs-write-a/letter.doc:1869: The [tide] tables for the quarter lie at the desk; 2 * 3...
END
# Embedded commands are not part of the text.
finds 'justify' </dev/null

# The offset is the paragraph's in the file: its first bytes are there.
[ "$(tail -c +1051 1013-pfs-write-b/letter.doc | head -c 3)" = The ]

# A document that is added twice is in the index once.
"$program" "$index" add ./1013-pfs-write-b/letter.doc ./1013-pfs-write-b/letter.doc
finds 'fold' <<'END'
./1013-pfs-write-b/letter.doc:1586: Please do not [fold] the corners.  A slip of paper serves as...
END

# A file that is not a document does not prevent the next from being added.
code=0
"$program" "$index" add "$here/search_index.sh" ./1058-pfs-first-choice-3/prose.doc \
    2>"$work/errors" || code=$?
[ $code -eq 4 ] && grep -q "search_index.sh: " "$work/errors"
"$program" "$index" find 'the' >"$work/found"
grep -q '1058-pfs-first-choice-3/prose.doc:' "$work/found"

# An invalid query is refused.
code=0
"$program" "$index" find '"' >"$work/found" 2>"$work/errors" || code=$?
[ $code -eq 1 ] && [ ! -s "$work/found" ] && grep -q 'unterminated string' "$work/errors"
