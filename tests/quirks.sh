#!/usr/bin/env bash
# quirks.sh SOURCE_DIRECTORY: every test that docs/quirks.md names exists, and so does every
# oddity that the code refers to by name.
set -euo pipefail
cd "$1"
status=0

named=$(grep -oE '`([A-Za-z]+/)?[A-Z][A-Za-z0-9]+\.[A-Z][A-Za-z0-9]+`' docs/quirks.md \
    | tr -d '\`' | sort -u)
[ -n "$named" ] || { echo "docs/quirks.md names no tests"; exit 1; }
for test in $named; do
    suite=${test%.*}
    grep -rqE "TEST(_P|_F)?\(${suite##*/}, *${test##*.}\)" tests \
        || { echo "docs/quirks.md names $test, which does not exist"; status=1; }
done

oddities=$(tr '\n' ' ' <<<"$(find vs_pfs -type f -exec sed 's|^ *// *||' {} +)" \
    | grep -oE '"[^"]+" in docs/quirks\.md' | cut -d'"' -f2 | sort -u)
[ -n "$oddities" ] || { echo "the code names no oddity"; exit 1; }
while read -r oddity; do
    grep -q "^| $oddity |" docs/quirks.md \
        || { echo "the code refers to \"$oddity\", which docs/quirks.md lacks"; status=1; }
done <<<"$oddities"
exit $status
