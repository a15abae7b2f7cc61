#!/usr/bin/env bash
# Folding a trace joins events and loses none: unfolded it is the full trace, for every sample. So
# the prose's golden traces, which are folded, contain as much as the letters'.
#   folding.sh PROGRAM SAMPLES
set -euo pipefail
program=$1
unfold=$(dirname "$0")/../support/unfold_trace.py
count=0
for document in "$2"/*/*.doc; do
    whole=$("$program" trace "$document")
    unfolded=$("$program" trace --fold "$document" | "$unfold" /dev/stdin)
    [ -n "$whole" ]
    diff <(echo "$whole") <(echo "$unfolded")
    count=$((count + 1))
done
[ "$count" -ge 14 ]
