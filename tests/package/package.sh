#!/usr/bin/env bash
# The Debian package from outside: its fields; its contents, unpacked elsewhere; and what dpkg
# installs to an empty system and removes again. The files for other programs pass the tests of
# tests/packaging once more, as they are in the package.
#   package.sh PACKAGE SOURCE
# "make package" runs it on the release, build.sh on the build that is tested. Needs dpkg-dev and
# what tests/packaging needs; lintian runs where it is installed. Without root, dpkg's part runs
# under fakeroot.
set -euo pipefail
package=$(realpath "$1")
source=$(realpath "$2")
samples=$source/samples
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
failures=0

failed()
{
    echo "$*"
    failures=$((failures + 1))
}

# field NAME PATTERN: the whole field of the package matches the extended regular expression.
field()
{
    local value
    value=$(dpkg-deb --field "$package" "$1")
    grep -qxE "$2" <<<"$value" || failed "$1: $value"
}
version=$(sed -nE 's/^project\(vs_pfs VERSION ([0-9.]+) .*/\1/p' "$source/CMakeLists.txt")
field Package pfsdoc
field Version "${version//./\\.}-1"
field Architecture "$(dpkg --print-architecture)"
field Maintainer 'the vs_pfs authors <.*\.invalid>'
# What the command and the libraries are linked with, and no build dependency.
field Depends '.*libc6 \(>= [0-9.]+\).*'
field Depends '.*zlib1g.*'
field Depends '.*libarchive13.*'
field Depends '.*libseccomp2.*'
field Depends '.*libssl3.*'
field Depends '.*libutf8proc2.*'
field Depends '.*libstdc\+\+6.*'
if dpkg-deb --field "$package" Depends | grep -E -- '-dev|libgtest'; then
    failed "depends on what only building needs"
fi
dpkg-deb --control "$package" "$work/control"
files=$(find "$work/control" -type f -printf '%f\n' | sort | xargs)
[ "$files" = 'control md5sums shlibs triggers' ] || failed "control files: $files"

# Unpacked.
root=$work/unpacked
dpkg-deb --extract "$package" "$root"
libraries=$root/usr/lib/$(dpkg-architecture -qDEB_HOST_MULTIARCH)
share=$root/usr/share
pfsdoc=$root/usr/bin/pfsdoc
for file in "$root/usr/libexec/pfsdoc/pfsdoc-batch" \
    "$libraries"/{libvs_pfs.so,libpfsdoc.so,libvs_pfs_static.a} \
    "$libraries"/cmake/{pfsdoc/pfsdocConfig,vs_pfs/vs_pfsConfig}.cmake \
    "$libraries"/pkgconfig/{pfsdoc,vs_pfs}.pc "$root"/usr/include/{vs_pfs,pfsdoc/document}.h \
    "$share"/bash-completion/completions/pfsdoc "$share/pfsdoc/pfsdoc.schema.json" \
    "$share"/doc/pfsdoc/{copyright,changelog.gz,changelog.Debian.gz}; do
    [ -s "$file" ] || failed "not in the package: ${file#"$root"}"
done

# All manual pages are there, compressed and complete.
for page in "$source"/docs/man/pfsdoc*.1; do
    zcat "$share/man/man1/$(basename "$page").gz" | cmp - "$page" || failed "$page"
done
# The file "copyright" contains all of LICENSE and the notices.
for text in LICENSE THIRD-PARTY-NOTICES.md; do
    if grep -vxFf "$share/doc/pfsdoc/copyright" "$source/$text"; then
        failed "is not in the file copyright, and in $text"
    fi
done
zcat "$share/doc/pfsdoc/changelog.gz" | cmp - "$source/CHANGELOG.md" || failed "changelog.gz"
entry=$(zcat "$share/doc/pfsdoc/changelog.Debian.gz" | dpkg-parsechangelog -l - -S Version)
[ "$entry" = "$version-1" ] || failed "changelog.Debian.gz is of version $entry"

# Each shared library is declared under its soname.
for library in "$libraries"/*.so; do
    soname=$(objdump -p "$library" | sed -n 's/^ *SONAME *//p')
    grep -qF "${soname%.so.*} ${soname#*.so.} pfsdoc " "$work/control/shlibs" ||
        failed "shlibs: $soname"
done

# Everything is stripped, and nothing contains the path of the build.
for binary in "$pfsdoc" "$libraries"/*.so "$libraries"/pfsdoc/*.so; do
    if readelf -SW "$binary" | grep -E ' \.(symtab|debug_info) '; then
        failed "is not stripped: $binary"
    fi
    if readelf -d "$binary" | grep -E 'R(UN)?PATH'; then
        failed "looks for libraries where it was built: $binary"
    fi
done
if grep -rlF "$source" "$root"; then
    failed "has a path of the machine that built it"
fi

# It runs where it was unpacked, with the module that is beside it.
count=0
for text in "$samples"/*/*.text; do
    sample=${text%.text}.doc
    echo "$sample" >>"$work/list"
    "$pfsdoc" text "$sample" | cmp - "$text" || failed "text of $sample"
    "$pfsdoc" convert -t html "$sample" -o "$work/sample.html"
    if [ -e "${text%.text}.html" ]; then
        cmp "$work/sample.html" "${text%.text}.html" || failed "html of $sample"
    fi
    "$pfsdoc" convert "$sample" -o "$work/sample.odt" || failed "odt of $sample"
    unzip -tqq "$work/sample.odt" || failed "odt of $sample is no archive"
    count=$((count + 1))
done
[ $count -ge 14 ] || failed "only $count samples"
"$pfsdoc" batch --files-from "$work/list" -t odt -o "$work/batch" --quiet || failed "batch: code $?"
converted=$(jq -r .status "$work/batch/manifest.ndjson" | grep -cx converted)
[ "$converted" -eq $count ] || failed "batch: $converted converted"

# The files for other programs.
tests=$source/tests/packaging
mime=$share/mime/packages/pfsdoc.xml
"$tests/mime.sh" "$mime" "$pfsdoc" "$samples" || failed "mime"
"$tests/magic.sh" "$share/pfsdoc/magic/pfsdoc" "$pfsdoc" "$samples" || failed "magic"
"$tests/tika.sh" "$share/pfsdoc/tika" "$mime" "$pfsdoc" "$samples" || failed "tika"
"$tests/pandoc.sh" "$share/pfsdoc/pandoc/pfsdoc.lua" "$pfsdoc" "$samples" || failed "pandoc"

# dpkg installs it to an empty system, and leaves nothing behind when it removes it. The package's
# dependencies are not there, so dpkg is told to ignore them.
system=$work/system
as_root=()
[ "$(id -u)" -eq 0 ] || as_root=(fakeroot)
mkdir -p "$system"/var/lib/dpkg/{info,updates,triggers}
touch "$system"/var/lib/dpkg/{status,available}
in_system()
{
    "${as_root[@]}" dpkg --root="$system" --force-depends --log="$work/dpkg.log" "$@" \
        >>"$work/dpkg.output" 2>&1 || {
        cat "$work/dpkg.output"
        failed "dpkg $*"
    }
}
in_system --install "$package"
[ "$(dpkg-query --admindir="$system/var/lib/dpkg" -W -f='${Status}' pfsdoc)" = \
    'install ok installed' ] || failed "is not installed"
"$system/usr/bin/pfsdoc" text "$sample" | cmp - "$text" || failed "text, installed"
in_system --purge pfsdoc
left=$(find "$system" -path "$system/var/lib/dpkg" -prune -o ! -type d -print)
[ -z "$left" ] || failed "is left behind: $left"
[ ! -d "$system/usr" ] || failed "is left behind: $(find "$system/usr")"

# Debian's own checker. It wants a package for each library; this is deliberately a single package.
if command -v lintian >/dev/null; then
    lintian --fail-on error --suppress-tags initial-upload-closes-no-bugs \
        --suppress-tags link-to-shared-library-in-wrong-package,package-name-doesnt-match-sonames \
        "$package" >"$work/lintian" 2>/dev/null || failed "lintian finds errors"
    cat "$work/lintian"
    if grep -q '^[EW]:' "$work/lintian"; then
        failed "lintian is not content"
    fi
fi

echo "$failures failures"
[ $failures -eq 0 ]
