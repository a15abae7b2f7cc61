#!/usr/bin/env bash
# odf_schema.sh PFSDOC SAMPLES: pfsdoc's output for every sample, and for a document with styles of
# all sorts, is valid by the schemas of OpenDocument 1.2: each stream of a package, its manifest,
# and the single XML file. The schemas come with a validator that Maven fetches once; skipped
# (code 77) if it cannot.
set -euo pipefail
pfsdoc=$1
samples=$2
for tool in xmllint unzip; do
    command -v "$tool" >/dev/null || { echo "$tool is not installed" >&2; exit 1; }
done
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

version=0.12.0
repository=${XDG_CACHE_HOME:-$HOME/.cache}/pfsdoc-judges
jar=$repository/org/odftoolkit/odfvalidator/$version/odfvalidator-$version-jar-with-dependencies.jar
if [ ! -e "$jar" ]; then
    command -v mvn >/dev/null || { echo "skipped: maven is not installed"; exit 77; }
    mvn -q -B org.apache.maven.plugins:maven-dependency-plugin:3.6.1:get \
        "-Dmaven.repo.local=$repository" -Dtransitive=false \
        "-Dartifact=org.odftoolkit:odfvalidator:$version:jar:jar-with-dependencies" \
        >"$work/log" 2>&1 || { echo "skipped: the schemas cannot be fetched"; exit 77; }
fi
unzip -qq "$jar" 'schema/odf1.2/*' -d "$work"
schema=$work/schema/odf1.2/OpenDocument-v1.2-os-schema.rng
manifest_schema=$work/schema/odf1.2/OpenDocument-v1.2-os-manifest-schema.rng

# The schemas must be able to reject something.
echo '<office:document xmlns:office="urn:oasis:names:tc:opendocument:xmlns:office:1.0"/>' \
    >"$work/wrong.xml"
! xmllint --noout --relaxng "$schema" "$work/wrong.xml" 2>/dev/null \
    || { echo "the schema takes anything" >&2; exit 1; }

# validate SCHEMA FILE...
validate() {
    xmllint --noout --relaxng "$@" 2>"$work/log" || { cat "$work/log" >&2; exit 1; }
}

# check NAME DOCUMENT
check() {
    local entry
    mkdir "$work/$1"
    "$pfsdoc" convert -o "$work/$1/package.odt" "$2"
    "$pfsdoc" convert -o "$work/$1/flat.fodt" "$2"
    (cd "$work/$1" && unzip -qq package.odt)
    validate "$schema" "$work/$1"/{content,styles,meta}.xml "$work/$1/flat.fodt"
    validate "$manifest_schema" "$work/$1/META-INF/manifest.xml"
}

count=0
for document in "$samples"/*/*.doc; do
    check "$(basename "$(dirname "$document")").$(basename "$document" .doc)" "$document"
    count=$((count + 1))
done
[ "$count" -gt 0 ] || { echo "there are no samples in $samples" >&2; exit 1; }

# Rulers with stops of both kinds, indents, margins beyond the page's, an empty title.
letter=$samples/1058-pfs-first-choice-3/letter.doc
{
    head -c -1 "$letter"
    for ((i = 0; i < 60; ++i)); do
        printf '\f\0\0\0%*s[--%s>-T---D---]\rP\001\ta\t%d\r' $((i % 20)) '' \
            "$([ $((i % 3)) -eq 0 ] && echo '*' || echo '-')" "$i"
    done
    tail -c 1 "$letter"
} >"$work/rulers"
check styles "$work/rulers"
echo "$count samples and a document with many styles"
