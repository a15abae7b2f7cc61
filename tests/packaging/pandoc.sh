#!/usr/bin/env bash
# pandoc.sh READER PFSDOC SAMPLES: pandoc with our reader finds the words of every sample's page,
# of several documents, and of the readable part of a truncated document; and it reports a file
# that is not a document, or whose bytes it cannot access.
set -euo pipefail
exec /usr/bin/python3 -B "$(dirname "$0")/pandoc_reader.py" "$@"
