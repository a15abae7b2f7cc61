#!/usr/bin/env bash
# host_data names every sample's kind as its folder does, without having opened it, and counts
# what the sample's trace has, several documents in one run.
#   host_data.sh PROGRAM SAMPLES
set -euo pipefail
program=$1
unfold=$(dirname "$0")/../support/unfold_trace.py
documents=()
expected=
for trace in "$2"/*/*.trace; do
    kind=$(sed -nE 's/^kind: *//p' "${trace%.trace}.description")
    case $kind in # a kind may also be given by its id
        1012) kind='PFS: WRITE A' ;;
        1013) kind='PFS: WRITE B' ;;
        1014) kind='Professional Write 1' ;;
        1015) kind='Professional Write 2' ;;
        1016) kind='IBM Writing Assistant' ;;
        1017) kind='PFS: First Choice 2.0' ;;
        1058) kind='PFS: First Choice 3.0' ;;
    esac
    events=$("$unfold" "$trace")
    documents+=("${trace%.trace}.doc")
    expected+="${trace%.trace}.doc: $kind, $(grep -c '^ *char ' <<<"$events") characters"
    expected+=" in $(grep -c '^ *break paragraph$' <<<"$events") paragraphs"$'\n'
done
[ "${#documents[@]}" -ge 14 ]
diff <(printf %s "$expected") <("$program" "${documents[@]}")

# What is no document is named, and the others are counted nevertheless.
code=0
output=$("$program" "$0" "${documents[0]}") || code=$?
[ "$code" -eq 1 ]
[ "${output%%$'\n'*}" = "$0: not for this filter" ]
[ "$(wc -l <<<"$output")" -eq 2 ]
