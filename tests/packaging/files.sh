# shellcheck shell=bash
# For the tests of this folder, which source it: the samples with the types that they have for
# the desktop, and files that are none of ours, some by very little.

# type_of SAMPLE: by the number that its folder begins with.
type_of()
{
    case $(basename "$(dirname "$1")") in
    1012-* | 1013-*) echo application/x-pfs-write ;;
    1014-* | 1015-*) echo application/x-professional-write ;;
    1016-*) echo application/x-ibm-writing-assistant ;;
    1017-* | 1058-*) echo application/x-pfs-first-choice ;;
    esac
}

# patch FILE OFFSET TEXT: overwrites bytes of the file.
patch()
{
    printf '%s' "$3" | dd of="$1" bs=1 seek="$2" conv=notrunc status=none
}

# make_others DIRECTORY PFSDOC SAMPLES: files of other formats, and files that only resemble ours.
make_others()
{
    local directory=$1 pfsdoc=$2 samples=$3
    local write=$samples/1013-pfs-write-b/letter.doc
    mkdir -p "$directory"

    printf 'Dear Sir,\n\nnothing of ours.\n' >"$directory/text.doc"
    printf 'GERBILDOC TYPE 4 WRD PC\n' >"$directory/signatures-elsewhere.doc"
    printf '{\\rtf1\\ansi nothing of ours}\n' >"$directory/rich.doc"
    printf '\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1%1016s' '' >"$directory/compound.doc"
    printf '\x89PNG\r\n\x1A\n\0\0\0\rIHDR%40s' '' >"$directory/picture"
    printf 'PK\x03\x04\x14%600s' '' >"$directory/archive"
    "$pfsdoc" convert -t json "$write" -o "$directory/letter.json"
    "$pfsdoc" convert -t html "$write" -o "$directory/letter.html"
    printf '.TH PAGE 1\n.SH NAME\npage \\- nothing of ours\n' >"$directory/page.1"
    printf 'nothing of ours\n' >"$directory/notes.2"
    : >"$directory/empty"

    head -c 646 "$write" >"$directory/cut-in-the-signature"
    head -c 649 "$write" >"$directory/cut-before-the-variant"
    cp "$write" "$directory/third-variant"
    patch "$directory/third-variant" 649 3
    cp "$write" "$directory/fifth-type"
    patch "$directory/fifth-type" 641 'TYPE 5'
    cp "$samples/1058-pfs-first-choice-3/letter.doc" "$directory/database"
    patch "$directory/database" 9 'GERBILDB '
}

failures=0
failed()
{
    echo "$*"
    failures=$((failures + 1))
}

# finish COUNT: the end of the test, which has checked that many samples.
finish()
{
    [ "$1" -ge 14 ] || failed "only $1 samples"
    echo "$1 samples, $failures failures"
    [ "$failures" -eq 0 ]
}
