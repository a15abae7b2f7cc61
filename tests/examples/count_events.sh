#!/usr/bin/env bash
# count_events counts what the samples' traces list.
#   count_events.sh PROGRAM SAMPLES MODULE
set -euo pipefail
program=$1
module=$3
count=0
for trace in "$2"/*/*.trace; do
    characters=$(grep -cE '^ *char ' "$trace")
    paragraphs=$(grep -cE '^ *break paragraph$' "$trace")
    expected="$characters characters in $paragraphs paragraphs"
    actual=$("$program" "$module" "${trace%.trace}.doc")
    [ "$actual" = "$expected" ] || { echo "$trace: $actual instead of $expected"; exit 1; }
    count=$((count + 1))
done
[ "$count" -ge 14 ]
