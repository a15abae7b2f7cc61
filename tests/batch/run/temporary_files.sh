#!/usr/bin/env bash
# A folder for temporary files that is full: a long document that goes to OpenDocument is an
# error of its own, with nothing half-written, and a short one needs no such file. In a mount
# namespace of its own; skipped (code 77) where the system does not allow one.
#   temporary_files.sh PROGRAM SAMPLES
set -euo pipefail
program=$(realpath "$1")
samples=$(realpath "$2")
if [ "${3:-}" != inside ]; then
    unshare -rm true 2>/dev/null || { echo "no mount namespace can be had"; exit 77; }
    exec unshare -rm "$0" "$program" "$samples" inside
fi

work=$(mktemp -d)
trap 'cd /; umount "$work/small" 2>/dev/null; rm -rf "$work"' EXIT
cd "$work"
mkdir in small
mount -t tmpfs -o size=1m none small
export TMPDIR=$work/small
short=$samples/1012-pfs-write-a/letter.doc
cp "$short" in/SHORT
{
    head -c -1 "$short"
    for number in $(seq 20000); do
        printf '\rParagraph %d of a document that is too long\r' "$number"
    done
    tail -c 1 "$short"
} >in/LONG
failures=0

fail()
{
    echo "$1"
    failures=$((failures + 1))
}

words='a temporary file cannot be written: No space left on device'

for format in odt fodt; do
    code=0
    "$program" convert in/LONG -o "LONG.$format" 2>errors || code=$?
    [ $code -eq 7 ] || fail "$format: code $code instead of 7"
    grep -qF "pfsdoc: in/LONG: $words; " errors || fail "$format: $(cat errors)"
    [ -z "$(find . -name "LONG.$format" -o -name '.pfsdoc-*')" ] || fail "$format: left behind"
    "$program" convert in/SHORT -o "SHORT.$format" || fail "$format: a short one fails too"

    # The sum tells that one file failed, and the next run has another try at it.
    code=0
    "$program" batch in -o "out.$format" -t "$format" --quiet 2>errors || code=$?
    [ $code -eq 1 ] || fail "$format: the batch ends with code $code instead of 1: $(cat errors)"
    grep -qF "$words" "out.$format/manifest.ndjson" || fail "$format: not in the manifest"
    cmp "out.$format/in/SHORT.$format" <("$program" convert -t "$format" in/SHORT)
    [ ! -e "out.$format/in/LONG.$format" ] || fail "$format: left behind by the batch"
    TMPDIR=$work "$program" batch in -o "out.$format" -t "$format" --quiet \
        || fail "$format: the next run fails too"
    cmp "out.$format/in/LONG.$format" <(TMPDIR=$work "$program" convert -t "$format" in/LONG)
done
[ -z "$(ls -A small)" ] || fail "a temporary file is left"

echo "$failures failures"
[ $failures -eq 0 ]
