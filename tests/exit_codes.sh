#!/usr/bin/env bash
# The exit codes are listed in one place, the manual page pfsdoc(1): all of error.h, and 0 and 1.
# The other pages refer to it, and neither they nor the guides repeat what all commands have.
#   exit_codes.sh SOURCE
set -euo pipefail
cd "$1"
failures=0

complain()
{
    echo "$*"
    failures=$((failures + 1))
}

# exit_status PAGE: the section.
exit_status()
{
    sed -n '/^\.SH EXIT STATUS/,/^\.SH [^E]/p' "$1"
}

mapfile -t codes < <(sed -nE 's/^ *(case .*)?return ([0-9]+);$/\2/p' include/pfsdoc/error.h)
[ ${#codes[@]} -ge 8 ]
for code in 0 1 "${codes[@]}"; do
    exit_status docs/man/pfsdoc.1 | grep -qxF ".B $code" || complain "pfsdoc(1) does not have $code"
done
for page in docs/man/pfsdoc-*.1; do
    exit_status "$page" | grep -qF '.BR pfsdoc (1)' || complain "$page does not refer to pfsdoc(1)"
    ! exit_status "$page" | grep -qE '^\.B (2|130)$' || complain "$page repeats the codes of all commands"
done
for guide in README.md docs/guide.md docs/library.md; do
    ! grep -nE '\b(70|130)\b.*(fault|error|interrupted)|(internal|interrupted).*\b(70|130)\b' "$guide" ||
        complain "$guide repeats the exit codes"
done
[ $failures -eq 0 ]
