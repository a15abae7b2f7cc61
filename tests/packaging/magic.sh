#!/usr/bin/env bash
# file(1) with our magic file identifies the kind of every sample as pfsdoc does, and its type as
# the desktop's database does; it identifies no other file as one of ours.
#   magic.sh MAGIC_FILE PFSDOC SAMPLES
# Needs file and jq.
set -euo pipefail
magic_file=$1
pfsdoc=$2
samples=$3
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
# shellcheck source=tests/packaging/files.sh
source "$(dirname "$0")/files.sh"
with_system=$magic_file:/usr/share/misc/magic

# In its checking mode, file(1) complains about lines that it cannot read.
file -c -m "$magic_file" >"$work/checked" 2>&1 || failed "file -c fails"
if grep -iE '(error|warning)' "$work/checked" | grep -v 'using regular magic file'; then
    failed "file -c complains"
fi

count=0
for sample in "$samples"/*/*.doc; do
    kind=$("$pfsdoc" identify --lines "$sample" | jq -r .kind)
    type=$(type_of "$sample")
    for magic in "$magic_file" "$with_system"; do
        said=$(file -b -m "$magic" "$sample")
        [ "$said" = "$kind document" ] || failed "$sample ($magic): $said"
        said=$(file -b --mime-type -m "$magic" "$sample")
        [ "$said" = "$type" ] || failed "$sample ($magic): type $said"
    done
    count=$((count + 1))
done

# If both signatures are present, First Choice's counts, as in pfsdoc. Any generation but 3 is 2.
cp "$samples/1058-pfs-first-choice-3/letter.doc" "$work/both"
patch "$work/both" 641 'TYPE 4'
said=$(file -b -m "$magic_file" "$work/both")
[ "$said" = 'PFS: First Choice 3.0 document' ] || failed "both signatures: $said"
patch "$work/both" 18 ' '
said=$(file -b -m "$magic_file" "$work/both")
[ "$said" = 'PFS: First Choice 2.0 document' ] || failed "generation of a blank: $said"

make_others "$work/others" "$pfsdoc" "$samples"
others=0
for other in "$work/others"/*; do
    said=$(file -b -m "$magic_file" "$other"; file -b --mime-type -m "$magic_file" "$other")
    if grep -E 'PFS|Write|Assistant|x-pfs|x-pro|x-ibm' <<<"$said"; then
        failed "is said of $other"
    fi
    others=$((others + 1))
done
[ "$others" -ge 10 ] || failed "only $others files of others"
finish "$count"
