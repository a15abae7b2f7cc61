#!/usr/bin/env bash
# The pages of docs/formats compared with the program: an example shows what explain prints, every
# row of a header table is a field there, and every field that is read has its row.
#   format_pages.sh PROGRAM SOURCE_DIRECTORY
#
# An example begins with the indented line "$ pfsdoc explain FILE" and ends with the block; a
# line "..." stands for omitted lines. A row of a header table is "| offset | size | field |"; it is
# correct if one of the page's documents has that field there, followed by something else.
set -euo pipefail
program=$1
cd "$2"
failures=0

fail()
{
    echo "$1"
    failures=$((failures + 1))
}

# A page's examples, each as the document's name and contiguous pieces, separated by lines "...".
examples()
{
    sed -nE '/^    \$ pfsdoc explain /,/^( {0,3}[^ ]|$)/ {
        s/^    \$ pfsdoc explain (.*)/...\n=\1\n.../
        s/^    //
        /^$/d
        p
    }' "$1"
}

check_piece()
{
    [ -z "$piece" ] || [[ $'\n'$printed$'\n' == *$'\n'"$piece"* ]] \
        || fail "$page: not what explain prints for $document:"$'\n'"$piece"
    piece=
}

check_examples()
{
    local piece='' printed=''
    while IFS= read -r line; do
        case $line in
        ...) check_piece ;;
        =*)
            document=${line#=}
            printed=$(COLUMNS=80 "$program" explain "$document")
            ;;
        *) piece+=$line$'\n' ;;
        esac
    done < <(examples "$page"; echo ...)
}

# Lines "offset words" for everything that explain prints for a document's header.
fields()
{
    COLUMNS=1000 "$program" explain "$1" | sed -nE 's/^ *([0-9]+)  [^|]*\|.*\|  +([a-z].*)$/\1 \2/p' \
        | sed -E '/ form feed: the text begins|^512 /,$d'
}

rows()
{
    sed -nE 's/^\| ([0-9]+) \| ([0-9]+) \| ([^|]+) \|.*/\1 \2 \3/p' "$page"
}

check_table()
{
    local shown offset size name found
    shown=$(for document in "$@"; do fields "$document"; done)
    while read -r offset size name; do
        found=$(grep -cE "^$offset $name" <<<"$shown" || true)
        [ "$found" -gt 0 ] || fail "$page: explain shows no \"$name\" at $offset"
        grep -qE "^$((offset + size)) " <<<"$shown"$'\n512 \n' \
            || fail "$page: nothing begins behind \"$name\", $size bytes from $offset"
    done < <(rows)
    while read -r offset name; do
        awk -v at="$offset" '$1 <= at && at < $1 + $2 { found = 1 } END { exit !found }' \
            < <(rows) || fail "$page: has no row for \"$name\" at $offset"
    done < <(grep -vE '(^[0-9]+|:) not used$' <<<"$shown")
}

for page in docs/formats/*.md; do
    mapfile -t documents < <(sed -nE 's/^    \$ pfsdoc explain //p' "$page" | sort -u)
    check_examples
    [ ${#documents[@]} -eq 0 ] || check_table "${documents[@]}"
done

# There must be something to check.
for page in pfs-write professional-write first-choice; do
    grep -q '^    \$ pfsdoc explain ' "docs/formats/$page.md" || fail "$page.md has no example"
    grep -qE '^\| [0-9]+ \| [0-9]+ \| ' "docs/formats/$page.md" || fail "$page.md has no table"
done
[ $failures -eq 0 ]
