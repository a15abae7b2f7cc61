#!/usr/bin/env bash
# A command's manual page compared with the program's help: the page has each option and each
# format in the help text. A page may have more: a format may be missing from
# the build.
#   manual_page.sh PROGRAM COMMAND PAGE
set -euo pipefail
program=$1
command=$2
page=$(sed 's/\\-/-/g' "$3")
help=$("$program" "$command" --help)
failures=0

expect_said()
{
    grep -qE -e "^\.(B|BI|BR|RB|IR) .*$1( |\"|$)" <<<"$page" || {
        echo "is not in the page: $1"
        failures=$((failures + 1))
    }
}

mapfile -t options < <(sed -nE '/^Options:/,/^$/ s/^  (-[^ ]*).*/\1/p' <<<"$help" | tr ',' '\n')
[ ${#options[@]} -ge 2 ]
for option in "${options[@]}"; do
    expect_said "$option"
done

mapfile -t formats < <(sed -nE '/^  -t,--to/,/^  -/ s/^ {32}([a-z]+) .*/\1/p' <<<"$help")
[ "$command" != convert ] || [ ${#formats[@]} -ge 2 ]
for format in "${formats[@]}"; do
    expect_said "$format"
done

[ $failures -eq 0 ]
