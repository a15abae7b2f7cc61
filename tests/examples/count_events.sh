#!/usr/bin/env bash
# count_events counts what the samples' traces list.
#   count_events.sh PROGRAM SAMPLES MODULE
set -euo pipefail
program=$1
module=$3
unfold=$(dirname "$0")/../support/unfold_trace.py
count=0
for trace in "$2"/*/*.trace; do
    events=$("$unfold" "$trace")
    characters=$(grep -cE '^ *char ' <<<"$events")
    paragraphs=$(grep -cE '^ *break paragraph$' <<<"$events")
    expected="$characters characters in $paragraphs paragraphs"
    actual=$("$program" "$module" "${trace%.trace}.doc")
    [ "$actual" = "$expected" ] || { echo "$trace: $actual instead of $expected"; exit 1; }
    count=$((count + 1))
done
[ "$count" -ge 14 ]
