#!/usr/bin/env bash
# The files for Tika, without Tika, which Debian does not package: they are XML, recognise the same
# types by the same bytes as the desktop's file, and the command in them writes the text of every
# sample.
#   tika.sh DIRECTORY MIME_FILE PFSDOC SAMPLES
# Needs xmllint.
set -euo pipefail
xmllint --noout --nonet "$1/custom-mimetypes.xml" "$1/tika-external-parsers.xml" "$2"
exec /usr/bin/python3 -B "$(dirname "$0")/tika_files.py" "$@"
