#include "tests/module/rich_documents.h"

#include "tests/support/notation.h"
#include "tests/support/raw_documents.h"

namespace tests {

namespace {

// Header and footer lines, attributes and alignment, a ruler with both kinds of stops.
Patches write_header_patches()
{
    return {write_margins(4, 40),
            {16, "\x0F\x20\x10\x20\x0F\x20"},
            {172, word(9) + word(20) + word(30)},
            write_header_line(0, "Header one"),
            write_header_line(1, "Header two"),
            write_header_line(2, "Footer one"),
            write_header_line(3, "Footer two"),
            {822, word(0) + word(2)},
            {828, "\x07\x20\x02"}};
}

std::string write_body(const std::string &attributed)
{
    return bytes("0D 07 '  The first line of a paragraph is' 0D 'wrapped here, and has' 0C") +
           attributed +
           bytes("0D 0D '   ' 0D '*NEW PAGE*' 0D '  *J x*' 0D 'one * two *not a command' 0D "
                 "'     hanging line that is wrapped and' 0D '  whose indents are two' 0D '*n*'") +
           attributed + bytes("0D 0E");
}

std::string professional_write_body()
{
    return bytes("01 '   A paragraph of one line' 01 'and the next' 00 '  wrapped ' 03 'double' "
                 "C2 41 C9 1F E9 41 03 00 00 '   ' 00 02 'shown' 02 'hidden' C1 02 00 07 05 01 03 "
                 "30 '  after a record' 07 06 02 'xyz' 01 '*N*' 01 0D '2*3' 0C FF 40 01 0E");
}

Patches choice_header_patches()
{
    return {choice_margins(4, 40),
            {356, "CR"},
            {359, "UB"},
            {363, "BU"},
            {366, std::string("\x11\x01\x00\x80", 4)},
            choice_header_line(0, "Header one"),
            choice_header_line(1, "Header two"),
            choice_header_line(2, "Footer one"),
            choice_header_line(3, "Footer two")};
}

std::string choice_body()
{
    return bytes(
        "'  The first line of a paragraph is ' 0C 'wrapped here' C1 01 C2 48 06 C3 0F 0D "
        "0C '  ' 0D '*NEW PAGE*' 0C 'two * three' C4 40 40 'x' 0C '     hanging line that is "
        "wrapped' 0D '  and ends' 8D 00 A0 00 FF 08 0C 0E");
}

std::string choice3_body()
{
    return bytes(
        "00 '  A line that is soft' 0D 40 01 'and its end' C1 01 C2 48 06 0D 0C 00 00 00 "
        "'  [  T C2 T   ]' C2 'x' 'T' 0D 40 01 0D 08 'skipped' 0D 48 40 00 0D 18 '  ' 0D 40 "
        "41 01 '*N*' 0C 0D 50 01 '   last ' FF 08 A0 00 0D 0E");
}

} // namespace

const std::vector<NamedDocument> &rich_documents()
{
    static const std::vector<NamedDocument> documents{
        {"write_a",
         write_document(1, write_body(bytes("C1 05 E2 1F 8D 00")), write_header_patches())},
        {"write_b",
         write_document(2, write_body(bytes("C1 05 E2 1F AA 00")), write_header_patches())},
        {"writing_assistant",
         write_document(3, write_body(bytes("C1 05 F0 21 B2 1F E0 00")), write_header_patches())},
        {"professional_write_1",
         write_document(4, professional_write_body(), write_header_patches())},
        {"professional_write_2",
         write_document(5, professional_write_body(), write_header_patches())},
        {"first_choice_1", choice_document('1', choice_body(), choice_header_patches())},
        {"first_choice_2", choice_document('2', choice_body(), choice_header_patches())},
        {"first_choice_3", choice_document('3', choice3_body(), choice_header_patches())},
    };
    return documents;
}

} // namespace tests
