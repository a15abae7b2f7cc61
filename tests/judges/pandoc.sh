#!/usr/bin/env bash
# pandoc.sh PFSDOC SAMPLES: pandoc reads every sample's tree without a warning, writes it back
# unchanged, and writes the words of the page as plain text, and DOCX, EPUB and reStructuredText,
# of which the first two are intact archives. Needs pandoc and unzip.
set -euo pipefail
exec /usr/bin/python3 -B "$(dirname "$0")/pandoc_judge.py" "$1" "$2"
