#!/usr/bin/env bash
# resumable_reader shows a letter in the given number of runs, and all runs together show what one
# run does. A token of one document is refused for another.
#   resumable_reader.sh PROGRAM SAMPLES
set -euo pipefail
program=$1
samples=$2
here=$(dirname "$0")
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
place=$work/place
letter=$samples/1013-pfs-write-b/letter.doc

# The whole letter, checked by a person once.
"$program" "$letter" "$place" 1000 | diff "$here/letter.paragraphs" -
[ ! -e "$place" ]

# In steps: the token is stored from run to run, and removed at the end.
for sample in "$samples"/*/letter.doc; do
    "$program" "$sample" "$place" 1000 >"$work/whole"
    for step in 1 2 7; do
        : >"$work/steps"
        runs=0
        while ! grep -qxF '(the end)' "$work/steps"; do
            "$program" "$sample" "$place" $step >>"$work/steps"
            runs=$((runs + 1))
            [ $runs -le 1000 ]
        done
        diff "$work/whole" "$work/steps"
        [ $runs -gt $(($(wc -l <"$work/whole") / step / 2)) ]
        [ ! -e "$place" ]
    done
done

refuses() # CODE DOCUMENT
{
    local code=0
    "$program" "$2" "$place" 1 >"$work/output" 2>"$work/errors" || code=$?
    [ $code -eq "$1" ] || { echo "$2: $code instead of $1"; exit 1; }
    [ ! -s "$work/output" ] && [ -s "$work/errors" ]
}

# Another document's token, an invalid token, and a file that is not a document.
"$program" "$letter" "$place" 3 >/dev/null
refuses 2 "$samples/1012-pfs-write-a/letter.doc"
echo "nonsense" >"$place"
refuses 2 "$letter"
rm "$place"
refuses 4 "$0"

# A truncated letter ends with an error instead of its end.
head -c 1500 "$letter" >"$work/cut"
code=0
"$program" "$work/cut" "$place" 1000 >"$work/output" 2>/dev/null || code=$?
[ $code -eq 5 ]
diff <(head -n 4 "$here/letter.paragraphs") <(head -n 4 "$work/output")
