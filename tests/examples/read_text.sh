#!/usr/bin/env bash
# read_text writes every sample's characters as they are stored, one paragraph a line: those
# that the sample's trace lists.
#   read_text.sh PROGRAM SAMPLES
set -euo pipefail
program=$1
unfold=$(dirname "$0")/../support/unfold_trace.py
count=0
for trace in "$2"/*/*.trace; do
    # Bytes as \xNN and paragraph ends as \n, which printf then makes of them.
    expected=$("$unfold" "$trace" |
        sed -nE 's/^ *char (..).*/\\x\1/p; s/^ *break paragraph$/\\n/p' | tr -d '\n')
    # shellcheck disable=SC2059
    cmp <(printf "$expected") <("$program" "${trace%.trace}.doc")
    count=$((count + 1))
done
[ "$count" -ge 14 ]

# What is no document is refused, and nothing is written.
code=0
output=$("$program" "$0" 2>/dev/null) || code=$?
[ "$code" -eq 4 ]
[ -z "$output" ]
