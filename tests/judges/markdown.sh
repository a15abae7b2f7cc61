#!/usr/bin/env bash
# markdown.sh PFSDOC SAMPLES: cmark reads every sample's Markdown as the sample's text, paragraph
# by paragraph, with the same characters emphasised. Needs cmark.
set -euo pipefail
exec /usr/bin/python3 -B "$(dirname "$0")/markdown_judge.py" "$1" "$2"
