#!/usr/bin/env bash
# pandoc.sh READER PFSDOC SAMPLES: pandoc with our reader finds the words of every sample's page;
# documents one after the other; what there is of a cut document; and says so where a file is
# no document, or where it cannot get at the bytes.
set -euo pipefail
exec python3 -B "$(dirname "$0")/pandoc_reader.py" "$@"
