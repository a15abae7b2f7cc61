#!/usr/bin/env bash
# A disk that is full and a folder that is read-only, in earnest: both end a batch with code 7,
# with nothing half-written under a final name and no temporary file. In a mount namespace of
# its own; skipped (code 77) where the system does not allow one.
#   places.sh PROGRAM SAMPLES
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
for number in $(seq 100); do
    cp "$samples/1012-pfs-write-a/letter.doc" "in/LETTER.$number"
done
mount -t tmpfs -o size=128k none small
failures=0

fail()
{
    echo "$1"
    failures=$((failures + 1))
}

# batch CODE: runs into the small place, which must end so.
batch()
{
    local code=0
    "$program" batch in -o small/out -t text --quiet 2>errors || code=$?
    [ $code -eq "$1" ] || fail "code $code instead of $1: $(cat errors)"
}

# Whatever has its final name is whole.
check_outputs()
{
    local file
    for file in small/out/in/*; do
        case $file in
        *.txt) cmp "$file" "$samples/1012-pfs-write-a/letter.text" || fail "half-written: $file" ;;
        *) fail "left behind: $file" ;;
        esac
    done
}

batch 7
grep -q '^pfsdoc: ' errors || fail "nothing was said"
[ -n "$(ls small/out/in)" ] || fail "nothing was converted before the disk was full"
check_outputs
[ ! -e small/out/manifest.ndjson ] || fail "a manifest that is not whole has its final name"

mount -o remount,ro small
batch 7
check_outputs

# With room, the run goes on to its end.
mount -o remount,rw,size=4m small
batch 0
check_outputs
[ "$(wc -l <small/out/manifest.ndjson)" -eq 100 ] || fail "not every file is in the manifest"
[ "$(find small -name '*.partial' -o -name '*.earlier' | wc -l)" -eq 0 ] || fail "left behind"

# A folder of the output on another disk, and the manifest on a third.
mkdir -p in/disk more/in/disk lists
cp in/LETTER.1 in/disk/LETTER
mount -t tmpfs none more/in/disk
mount -t tmpfs none lists
"$program" batch in -o more -t text --manifest lists/m --quiet || fail "cannot write to other disks"
cmp more/in/disk/LETTER.txt "$samples/1012-pfs-write-a/letter.text" || fail "wrong on another disk"
"$program" batch --verify more --manifest lists/m || fail "not as the manifest says"
umount more/in/disk lists

echo "$failures failures"
[ $failures -eq 0 ]
