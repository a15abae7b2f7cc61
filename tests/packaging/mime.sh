#!/usr/bin/env bash
# The desktop's types: with our file in a user's database, gio and xdg-mime recognise the type of
# every sample, whatever its name; and their results for other files are unchanged.
#   mime.sh MIME_FILE PFSDOC SAMPLES
# Needs shared-mime-info, libglib2.0-bin and xdg-utils.
set -euo pipefail
mime_file=$1
pfsdoc=$2
samples=$3
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
# shellcheck source=tests/packaging/files.sh
source "$(dirname "$0")/files.sh"
# The database as shared-mime-info installs it: additions by other programs on this machine,
# including an installed pfsdoc, must not matter.
export XDG_DATA_DIRS=$work/system XDG_DATA_HOME=$work/home
export XDG_CURRENT_DESKTOP=GNOME DISPLAY=
mkdir -p "$work/system/mime/packages"
cp /usr/share/mime/packages/freedesktop.org.xml "$work/system/mime/packages/"
update-mime-database "$work/system/mime"

gio_type() { gio info -a standard::content-type "$1" | sed -n 's/^ *standard::content-type: //p'; }
make_others "$work/others" "$pfsdoc" "$samples"
for file in "$work/others"/*; do
    echo "$(basename "$file") $(gio_type "$file")"
done >"$work/before"
grep -qx 'text.doc application/msword' "$work/before" || failed "no database of types: .doc"

mkdir -p "$XDG_DATA_HOME/mime/packages"
cp "$mime_file" "$XDG_DATA_HOME/mime/packages/"
update-mime-database "$XDG_DATA_HOME/mime" 2>"$work/warnings"
[ ! -s "$work/warnings" ] || failed "update-mime-database: $(cat "$work/warnings")"

for file in "$work/others"/*; do
    echo "$(basename "$file") $(gio_type "$file")"
done >"$work/after"
diff "$work/before" "$work/after" || failed "files of others have other types than before"

# No extension, First Choice's, two others' in capitals, and those of the other kinds.
count=0
for sample in "$samples"/*/*.doc; do
    expected=$(type_of "$sample")
    for name in LETTER LETTER.1 LETTER.9 LETTER.12 LETTER.DOC letter.doc letter.pfs letter.pw; do
        cp "$sample" "$work/$name"
        type=$(gio_type "$work/$name")
        [ "$type" = "$expected" ] || failed "$sample as $name: $type instead of $expected"
    done
    type=$(xdg-mime query filetype "$work/letter.doc")
    [ "$type" = "$expected" ] || failed "$sample: xdg-mime says $type instead of $expected"
    count=$((count + 1))
done

# If both signatures are present, First Choice's counts, as in pfsdoc.
cp "$samples/1058-pfs-first-choice-3/letter.doc" "$work/both"
patch "$work/both" 641 'TYPE 4'
[ "$(gio_type "$work/both")" = application/x-pfs-first-choice ] || failed "both: $(gio_type "$work/both")"

# Each type has a description for the user.
sed -n 's/.*mime-type type="\([^"]*\)".*/\1/p' "$mime_file" >"$work/types"
[ "$(wc -l <"$work/types")" -ge 4 ] || failed "few types: $(cat "$work/types")"
while read -r type; do
    grep -q '<comment>.* document</comment>' "$XDG_DATA_HOME/mime/$type.xml" ||
        failed "$type has no comment"
done <"$work/types"
finish "$count"
