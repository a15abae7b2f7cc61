#!/usr/bin/env bash
# Builds the Debian package of a build, whose install prefix must be /usr, and checks it with
# package.sh.
#   build.sh CPACK BUILD SOURCE
set -euo pipefail
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
"$1" --config "$2/CPackConfig.cmake" -B "$work"
"$(dirname "$0")/package.sh" "$work"/pfsdoc_*.deb "$3"
