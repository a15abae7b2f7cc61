#!/usr/bin/env bash
# The names that libpfsdoc.so exports, compared with the public headers: each belongs to a class
# or function that a header marks with PFSDOC_API, and whatever is marked is exported, so that no
# program fails to link.
#   exported_names.sh LIBRARY HEADERS
set -euo pipefail
library=$1
headers=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# What the library exports, without functions' parameters and the words before tables:
# pfsdoc::CodePage::named(...) and "vtable for pfsdoc::CodePage" both belong to CodePage.
nm -DC --defined-only "$library" | cut -d' ' -f3- |
    sed -E 's/^(vtable|typeinfo|typeinfo name|guard variable) for //; s/\(.*//' > "$work/names"
sed -nE 's/^pfsdoc::([A-Za-z0-9_]+).*/\1/p' "$work/names" | LC_ALL=C sort -u > "$work/shown"

# The marked names: the name is the last word before "(" or before what follows a class.
find "$headers" -name '*.h' ! -name export.h -exec cat {} + | tr '\n' ' ' |
    grep -oE 'PFSDOC_API [^;{(]*[;{(]' |
    sed -E 's/^PFSDOC_API //; s/ *[;{(]$//; s/ (final|:[^:]).*//; s/.*[ *&>]//' |
    LC_ALL=C sort -u > "$work/declared"

status=0
if grep -v '^pfsdoc::' "$work/names"; then
    echo "are shown, and are no names of pfsdoc"
    status=1
fi
if ! diff "$work/declared" "$work/shown"; then
    echo "< is marked in the headers and not shown, > is shown and not marked"
    status=1
fi
count=$(wc -l < "$work/shown")
[ "$count" -ge 15 ] || { echo "only $count names"; status=1; }
exit $status
