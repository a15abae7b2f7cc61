#!/usr/bin/env bash
# What a user does: installs the build, moves it elsewhere, and builds programs against it, by
# CMake packages and by pkg-config, in C and C++, linked and loading the module when they run.
# The programs' output for every sample is compared with the samples' known content.
#   programs.sh BUILD SOURCE CC CXX
set -euo pipefail
build=$1
source=$2
export CC=$3 CXX=$4
programs=$source/tests/install/programs
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
unset LD_LIBRARY_PATH PKG_CONFIG_PATH CMAKE_PREFIX_PATH VS_PFS_MODULE
failures=0

failed()
{
    echo "$*"
    failures=$((failures + 1))
}

# expect_same EXPECTED PROGRAM ARGUMENT...: compares the program's output with a file.
expect_same()
{
    local expected=$1
    shift
    if ! "$@" >"$work/output"; then
        failed "exit code is not 0: $*"
    fi
    diff "$expected" "$work/output" >"$work/difference" ||
        failed "expected and output differ: $*" "$(head -5 "$work/difference")"
}

cmake --install "$build" --prefix "$work/before" >/dev/null
mv "$work/before" "$work/prefix"
prefix=$work/prefix
libraries=$(dirname "$(find "$prefix" -name libvs_pfs.so)")

# Everything is there, and nothing contains the path of the build or of the first installation.
for file in bin/pfsdoc include/vs_pfs.h include/pfsdoc/document.h include/pfsdoc/writer.h \
    share/man/man1/pfsdoc.1 share/man/man1/pfsdoc-convert.1 \
    share/bash-completion/completions/pfsdoc share/pfsdoc/pfsdoc.schema.json \
    share/doc/pfsdoc/LICENSE share/doc/pfsdoc/THIRD-PARTY-NOTICES.md; do
    [ -s "$prefix/$file" ] || failed "$file is not installed"
done
find "$prefix" -name '*.cmake' -o -name '*.pc' -o -name '*.h' >"$work/texts"
[ "$(wc -l <"$work/texts")" -ge 20 ] || failed "few files: $(cat "$work/texts")"
if xargs grep -nF -e "$build" -e "$source" -e "$work" <"$work/texts"; then
    failed "is a path of the machine that built it"
fi
for binary in "$prefix/bin/pfsdoc" "$libraries"/*.so; do
    if readelf -d "$binary" | grep -E 'R(UN)?PATH'; then
        failed "$binary looks for libraries where it was built"
    fi
done

# By CMake packages, found in the moved tree.
cmake -S "$programs" -B "$work/by_cmake" -DCMAKE_PREFIX_PATH="$prefix"
cmake --build "$work/by_cmake"

# By pkg-config. The sources need only what the packages declare.
export PKG_CONFIG_PATH=$libraries/pkgconfig
mkdir "$work/by_pkg_config"
flags_of() { pkg-config --cflags --libs "$1"; }
# shellcheck disable=SC2046
"$CC" -std=c99 -o "$work/by_pkg_config/module_linked" "$programs/module_linked.c" $(flags_of vs_pfs)
# shellcheck disable=SC2046
"$CXX" -std=c++20 -o "$work/by_pkg_config/library_text" "$programs/library_text.cpp" \
    $(flags_of pfsdoc)
for package in vs_pfs pfsdoc; do
    told=$(pkg-config --modversion $package)
    grep -qF "VERSION $told " "$source/CMakeLists.txt" || failed "$package.pc: version $told"
done

# A trace's characters and breaks, by the numbers that the module gives them.
as_numbers()
{
    "$source/tests/support/unfold_trace.py" "$1" |
        sed -nE 's/^ *(char ..).*/\1/p; s/^ *break paragraph$/break 1/p; s/^break end$/break 2/p
            s/^block open$/break 6/p; s/^block close$/break 7/p'
}

run_installed() { LD_LIBRARY_PATH=$libraries "$@"; }

count=0
for text in "$source"/samples/*/*.text; do
    sample=${text%.text}
    document=$sample.doc
    as_numbers "$sample.trace" >"$work/numbers"
    expect_same "$work/numbers" "$work/by_cmake/module_linked" "$document"
    expect_same "$work/numbers" "$work/by_cmake/module_static" "$document"
    expect_same "$work/numbers" run_installed "$work/by_pkg_config/module_linked" "$document"
    expect_same "$work/numbers" \
        "$work/by_cmake/module_loaded" "$libraries/libvs_pfs.so" "$document"
    expect_same "$text" "$work/by_cmake/library_text" "$document"
    expect_same "$text" run_installed "$work/by_pkg_config/library_text" "$document"
    expect_same "$text" "$prefix/bin/pfsdoc" text "$document"
    expect_same "$text" "$prefix/bin/pfsdoc" convert -t text "$document"
    count=$((count + 1))
done
[ "$count" -ge 14 ] || failed "only $count samples"

# The programs in the library's manual, in order.
awk -v directory="$work" '/^```cpp$/ { on = 1; ++number; next } /^```$/ { on = 0 }
    on { print > (directory "/manual" number ".cpp") }' "$source/docs/library.md"
for number in 1 2 3; do
    # shellcheck disable=SC2046
    "$CXX" -std=c++20 -Wall -Wextra -Werror -o "$work/manual$number" "$work/manual$number.cpp" \
        $(flags_of pfsdoc)
done
letter=$source/samples/1013-pfs-write-b/letter.doc
grep -vxF '(the end)' "$source/tests/examples/letter.paragraphs" >"$work/paragraphs"
expect_same "$work/paragraphs" run_installed "$work/manual1" "$letter"
letter=$source/samples/1012-pfs-write-a/letter.doc
"$prefix/bin/pfsdoc" text --no-headers "$letter" >"$work/converted"
printf 'lost: %s\n' bold italic underline subscript superscript header_footer command \
    >>"$work/converted"
expect_same "$work/converted" run_installed "$work/manual2" "$letter"
printf '%s\n' 'Moorings for the coming season' 'north pontoon' cats >"$work/bold"
expect_same "$work/bold" run_installed "$work/manual3" "$letter"

# The program in README.md: a whole document with its footer last, and one that is truncated.
awk '/^```cpp$/ { on = 1; next } /^```$/ { on = 0 } on' "$source/README.md" >"$work/letter.cpp"
# shellcheck disable=SC2046
"$CXX" -std=c++20 -Wall -Wextra -Werror "$work/letter.cpp" $(flags_of pfsdoc) -o "$work/letter"
letter=$source/samples/1013-pfs-write-b/letter.doc
run_installed "$work/letter" "$letter" >"$work/printed" || failed "README.md: is not 0"
squeezed() { tr -s ' \n\f\t' '\n' <"$1" | grep .; }
"$prefix/bin/pfsdoc" text "$letter" >"$work/text"
diff <(squeezed "$work/text") <(squeezed "$work/printed") || failed "README.md: other words, or order"
head -c 1400 "$letter" >"$work/truncated.doc"
if run_installed "$work/letter" "$work/truncated.doc" >"$work/printed" 2>"$work/message"; then
    failed "README.md: a truncated document is not reported"
fi
grep -q '^is truncated' "$work/message" || failed "README.md: $(cat "$work/message")"
[ -s "$work/printed" ] || failed "README.md: nothing of a truncated document is printed"

letter=$source/samples/1012-pfs-write-a/letter.doc
# The installed command writes every format that it lists.
formats=$("$prefix/bin/pfsdoc" convert --help |
    sed -nE '/^  -t,--to/,/^  -/ s/^ {32}([a-z]+) .*/\1/p')
[ "$(wc -w <<<"$formats")" -ge 2 ] || failed "few formats: $formats"
for format in $formats; do
    if ! "$prefix/bin/pfsdoc" convert -t "$format" "$letter" >"$work/output" ||
        [ ! -s "$work/output" ]; then
        failed "does not write the format $format"
    fi
done

# The installed command reads with the installed module: it fails if that is not a module.
find "$libraries" -name 'libvs_pfs.so*' -delete
echo "no module" >"$libraries/libvs_pfs.so"
code=0
"$prefix/bin/pfsdoc" text "$document" >/dev/null 2>&1 || code=$?
[ $code -eq 70 ] || failed "a broken module gives exit code $code instead of 70"

echo "$failures failures"
[ $failures -eq 0 ]
