#!/usr/bin/env bash
# injection.sh PFSDOC SAMPLES PFSBUILD: no name of a file and no text of a document becomes markup,
# a link, or a character that turns text around, in any format: see injection.py.
set -euo pipefail
exec /usr/bin/python3 -B "$(dirname "$0")/injection.py" "$1" "$3"
