#!/usr/bin/env bash
# Makes the Debian package of a build, whose install prefix must be /usr, and has package.sh look
# at it.
#   build.sh CPACK BUILD SOURCE
set -euo pipefail
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
"$1" --config "$2/CPackConfig.cmake" -B "$work"
"$(dirname "$0")/package.sh" "$work"/pfsdoc_*.deb "$3"
