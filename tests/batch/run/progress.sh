#!/usr/bin/env bash
# What a batch says while it goes on: a bar on a terminal, which is gone in the end, and plain
# lines elsewhere.
#   progress.sh PROGRAM SAMPLES
set -euo pipefail
program=$(realpath "$1")
letter=$(realpath "$2")/1012-pfs-write-a/letter.doc
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"
mkdir in
# One process writes many files: what opens each by itself takes far longer than the batches.
seq -f 'in/LETTER.%g' 6000 | letter=$letter xargs -n 500 sh -c 'tee -- "$@" <"$letter" >/dev/null' sh
failures=0

expect()
{
    grep -qP "$1" "$2" || { echo "not in $2: $1"; failures=$((failures + 1)); }
}

expect_no()
{
    ! grep -qP "$1" "$2" || { echo "in $2: $1"; failures=$((failures + 1)); }
}

script -qec "$program batch in -o shown -t text -j 1" /dev/null >terminal
expect '\r\x1b\[K\[#+\.+\] \d+ of 6000 files, \d+ a second, \d:\d\d:\d\d left, 0 failed' terminal
expect 'pfsdoc: 6000 files: 6000 converted\r$' terminal

# A line that is longer than the window scrolls it at each update.
for columns in 40 80 100; do
    script -qec "stty cols $columns; $program batch in -o wide$columns -t text -j 1" /dev/null >terminal
    /usr/bin/python3 - "$columns" terminal <<'END' || failures=$((failures + 1))
import re
import sys

columns = int(sys.argv[1])
updates = open(sys.argv[2], newline="").read().split("\r\033[K")
lines = [re.sub("\033\\[[0-9;]*m", "", line) for line in updates[1:-1]]
widest = max(map(len, lines))
print(columns, "columns:", len(lines), "updates,", max(lines, key=len))
if len(lines) < 3 or widest >= columns or any("\n" in line for line in lines):
    sys.exit(f"the bar does not fit {columns} columns: {lines}")
if not all(re.search("[0-9]+ of 6000 files.* 0 failed", line) for line in lines):
    sys.exit(f"the bar lacks its counts: {lines}")
END
done

"$program" batch in -o plain -t text >output 2>errors
expect '^pfsdoc: 6000 files: 6000 converted$' errors
expect_no '[\r\x1b]' errors
[ ! -s output ] || { echo "standard output is not empty"; failures=$((failures + 1)); }

# What holds the processes is said where a part is missing, or on request.
"$program" batch in -o plain -t text -v 2>verbose
expect '^pfsdoc: sandbox: ' verbose
if grep -q 'sandbox: seccomp, Landlock' verbose; then
    expect_no 'sandbox' errors
else
    expect 'sandbox' errors
fi
"$program" batch in -o plain -t text --sandbox=off 2>errors
expect_no 'sandbox' errors

"$program" batch in -o quiet -t text --quiet >output 2>errors
[ ! -s errors ] || { echo "said with --quiet: $(cat errors)"; failures=$((failures + 1)); }
diff -r shown quiet || failures=$((failures + 1))

echo "$failures failures"
[ $failures -eq 0 ]
