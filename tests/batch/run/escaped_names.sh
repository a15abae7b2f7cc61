#!/usr/bin/env bash
# The lines of the manual page that turn a manifest's names back into bytes, run as they stand there
# over files with every byte that a name may have.
#   escaped_names.sh PROGRAM SAMPLES PAGE
set -euo pipefail
program=$(realpath "$1")
letter=$(realpath "$2")/1012-pfs-write-a/letter.doc
page=$(realpath "$3")
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"
sed -n '/^\.B python3/,/^\.fi/p' "$page" |
    sed -e '/^\.fi/d' -e 's/^\.B //' -e 's/^"\(.*\)"$/\1/' -e 's/\\(aq/'\''/g' -e 's/\\(dq/"/g' \
        -e 's/\\e/\\/g' -e 's/\\-/-/g' -e 's/"    /    /' -e 's/ndjson"$/ndjson/' >names.sh
mkdir in
/usr/bin/python3 - "$letter" <<'END'
import os
import sys

letter = open(sys.argv[1], "rb").read()
names = [bytes([byte]) + b"%d" % byte for byte in range(1, 256) if byte != ord("/")]
names += ["\u202etxt".encode(), "\ufffe".encode(), "\u00e9".encode(), b"\\x41", b"caf\x82"]
for name in names:
    with open(b"in/" + name, "wb") as file:
        file.write(letter)
END
"$program" batch in -o out -t text -q
sh names.sh | sort -z >named
find in -type f -print0 | sort -z >there
[ "$(tr -cd '\0' <named | wc -c)" -eq 259 ]
cmp named there
# And the names that the outputs have are in no one's way.
[ "$(find out/in -name '*.txt' | wc -l)" -eq 259 ]
