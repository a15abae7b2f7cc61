#!/bin/sh
# Compares the names that the module exports with the committed list, and the libraries that
# it needs with those of the C and C++ runtime.
#   exported_symbols.sh MODULE LIST
set -eu
module=$1
list=$2

status=0
case $module in
*.dll)
    exported=$(objdump -p "$module" | awk '/Ordinal\/Name Pointer/ { on = 1; next }
        on && NF == 0 { exit } on { print $NF }' | LC_ALL=C sort)
    needed=$(objdump -p "$module" | sed -n 's/.*DLL Name: //p')
    ;;
*)
    exported=$(nm -D --defined-only "$module" | awk '{ sub(/@.*/, "", $3); print $3 }' |
        LC_ALL=C sort)
    needed=$(readelf -d "$module" | sed -n 's/.*(NEEDED).*\[\(.*\)\]/\1/p')
    ;;
esac
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

for library in $needed; do
    case $library in
    libc.so.* | libm.so.* | libstdc++.so.* | libc++.so.* | libc++abi.so.* | libgcc_s.so.*) ;;
    KERNEL32.dll | msvcrt.dll) ;;
    libasan.so.* | libubsan.so.* | ld-linux*) ;; # a sanitizer's runtime, where one is used
    *)
        echo "needs $library, which is no part of the C and C++ runtime"
        status=1
        ;;
    esac
done
exit $status
