#!/bin/sh
# Compares the names that the module exports with the committed list, and the libraries that
# it needs with those of the C and C++ runtime.
#   exported_symbols.sh MODULE LIST
set -eu
module=$1
list=$2

status=0
exported=$(nm -D --defined-only "$module" | awk '{ sub(/@.*/, "", $3); print $3 }' |
    LC_ALL=C sort)
expected=$(LC_ALL=C sort "$list")
if [ "$exported" != "$expected" ]; then
    echo "exported names differ from $list (+ is exported and not listed):"
    work=$(mktemp -d)
    trap 'rm -rf "$work"' EXIT
    echo "$expected" > "$work/listed"
    echo "$exported" > "$work/exported"
    diff -u "$work/listed" "$work/exported" || true
    status=1
fi

needed=$(readelf -d "$module" | sed -n 's/.*(NEEDED).*\[\(.*\)\]/\1/p')
for library in $needed; do
    case $library in
    libc.so.* | libm.so.* | libstdc++.so.* | libc++.so.* | libc++abi.so.* | libgcc_s.so.*) ;;
    libasan.so.* | libubsan.so.* | ld-linux*) ;; # a sanitizer's runtime, where one is used
    *)
        echo "needs $library, which is no part of the C and C++ runtime"
        status=1
        ;;
    esac
done
exit $status
