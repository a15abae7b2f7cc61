#!/usr/bin/env bash
# json.sh PFSDOC SAMPLES: every sample fits docs/pfsdoc.schema.json in both forms, has the words
# of the page, and has its offsets in order. Needs python3-jsonschema.
set -euo pipefail
directory=$(cd "$(dirname "$0")" && pwd)
exec /usr/bin/python3 -B "$directory/json_judge.py" "$1" "$2" "$directory/../../docs/pfsdoc.schema.json"
