#!/usr/bin/env bash
# The shell's completion of pfsdoc's command line, called as the shell calls it: with the
# words so far and the number of the one to be completed, which is the last.
#   completion.sh PROGRAM COMPLETION DOCUMENT
#
# What is offered is compared with the program's help, so that the two stay in step; and the
# program must be able to write every format that is offered.
set -u
program=$1
completion=$2
document=$3
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
# shellcheck source=/dev/null
source "$completion"
failures=0

# offered WORD...: what is offered for the last of the words, one a line, sorted.
offered()
{
    COMP_WORDS=("$program" "$@")
    COMP_CWORD=$#
    COMPREPLY=()
    _pfsdoc "$program" "${!#}" "${COMP_WORDS[COMP_CWORD - 1]}"
    [ ${#COMPREPLY[@]} -eq 0 ] || printf '%s\n' "${COMPREPLY[@]}" | LC_ALL=C sort
}

# expect EXPECTED WORD...: compares, in any order, words separated by spaces or line ends.
expect()
{
    local expected actual
    expected=$(tr -s ' ' '\n' <<<"$1" | LC_ALL=C sort)
    shift
    actual=$(offered "$@")
    if [ "$actual" != "$expected" ]; then
        printf 'pfsdoc %s<TAB>: expected and offered\n' "$*"
        diff <(echo "$expected") <(echo "$actual")
        failures=$((failures + 1))
    fi
}

# Everything in a help text that looks like an option at the start of a line.
options_told_by()
{
    "$program" "$@" --help | awk '/^ +-/ { gsub(",", "\n", $1); print $1 }'
}
commands=$("$program" --help | awk '/^[A-Z]/ { on = /^Subcommands/ } on && /^  / { print $1 }')

# The first word is a command, or an option of the program itself.
expect "help $commands $(options_told_by)" ''
expect 'identify' id
expect '--version' --v
expect '' xyz
expect "$commands" help ''
expect 'convert' help con

# All of a command's options, and never a file.
count=0
for command in $commands; do
    expect "$(options_told_by "$command")" "$command" -
    count=$((count + 1))
done
[ $count -ge 4 ] || { echo "only $count commands: $commands"; failures=$((failures + 1)); }
expect '--no-clobber --no-headers --no-page-breaks' text --no
expect '--output' convert LETTER --ou

# File names are left to the shell: nothing is offered, and the shell's default is enabled.
expect '' text ''
expect '' text LETT
expect '' identify A B ''
expect '' convert -o ''
expect '' convert --output lett
expect '' text --module /usr/lib
expect '' text -- -
[[ $(complete -p pfsdoc) == *'-o default'* ]] || { complete -p pfsdoc; failures=$((failures + 1)); }

# Values of options, after a space or after "=".
expect 'text' convert -t tex
expect 'text' convert --to = tex
expect '850 852' text --charset 85
expect '850 852' text --charset = 85
expect '0 72 80' text --wrap ''
expect '0 72 80' text --wrap =
expect 'auto always never' explain --color ''
expect 'off available require' batch --sandbox ''
expect 'require' batch letters --sandbox = r
expect 'available' batch letters -o out --sandbox av
expect '--sandbox' batch letters -o out --sa
expect '' batch --files-from ''

# The program writes each of the formats that are offered.
formats=$(offered convert -t '')
[ -n "$formats" ] || { echo "no formats are offered"; failures=$((failures + 1)); }
for format in $formats; do
    code=0
    "$program" convert -t "$format" "$document" -o "$work/written" 2>"$work/errors" || code=$?
    [ $code -eq 0 ] || {
        cat "$work/errors"
        echo "pfsdoc does not write the format $format"
        failures=$((failures + 1))
    }
done

# A program that cannot be started offers nothing and prints nothing.
program=$work/none
expect '' '' 2>"$work/errors"
[ ! -s "$work/errors" ] || { cat "$work/errors"; failures=$((failures + 1)); }

echo "$failures failures"
[ $failures -eq 0 ]
