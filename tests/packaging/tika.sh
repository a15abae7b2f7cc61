#!/usr/bin/env bash
# The files for Tika, without Tika, which Debian does not have: they are XML, know the same types
# by the same bytes as the desktop's file, and the command that they name writes the text of
# every sample.
#   tika.sh DIRECTORY MIME_FILE PFSDOC SAMPLES
# Needs xmllint.
set -euo pipefail
xmllint --noout --nonet "$1/custom-mimetypes.xml" "$1/tika-external-parsers.xml" "$2"
exec python3 -B "$(dirname "$0")/tika_files.py" "$@"
