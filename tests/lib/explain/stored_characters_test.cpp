// How characters are stored, compared with the module: each byte of each kind, with each attribute
// byte.
#include "lib/explain/stored_characters.h"

#include "tests/lib/explain/explained.h"

namespace {

using namespace tests;
using namespace pfsdoc;

explaining::StoredCharacter stored(DocumentKind kind, const std::string &text)
{
    return explaining::stored_character(
        kind, static_cast<unsigned char>(text[0]), [&text](uint32_t at) {
            return at < text.size() ? int32_t{static_cast<unsigned char>(text[at])} : -1;
        });
}

// The module's reading of the bytes, after a letter so that a space is not an indent.
KeepingSink read_by_module(DocumentKind kind, const std::string &character)
{
    const std::string before = kind == DocumentKind::first_choice_3 ? "40 01 'x'"
                               : is_first_choice(kind)              ? "'x'"
                                                                    : "00 'x'";
    return read_at_once(document_of(kind, bytes(before) + character + "|" + bytes("0E")), kind);
}

constexpr DocumentKind all_kinds[] = {
    DocumentKind::write_a,           DocumentKind::write_b,
    DocumentKind::writing_assistant, DocumentKind::professional_write_1,
    DocumentKind::first_choice_2,    DocumentKind::first_choice_3};

// The character before the bar, and the bar's position.
void expect_as_module(DocumentKind kind, const std::string &text)
{
    const explaining::StoredCharacter expected = stored(kind, text);
    const KeepingSink sink = read_by_module(kind, text.substr(0, 1 + expected.attribute_bytes));
    const std::vector<Character> characters = sink.all<Character>();
    ASSERT_GE(characters.size(), 2U);
    EXPECT_EQ(characters.back().byte, '|');
    const int32_t reported = expected.character == 0xFF ? ' ' : expected.character;
    EXPECT_EQ(characters[characters.size() - 2].byte, reported)
        << display_name(kind) << ", byte " << int{static_cast<unsigned char>(text[0])};
}

TEST(StoredCharacters, AreTheModulesWithEachAttributeByte)
{
    for (const DocumentKind kind : all_kinds) {
        for (int byte = 0x80; byte < 0x100; ++byte) {
            for (const char attribute : {'\x00', '\x01', '\x08', '\x10', '\x20', '\x30', '\x3F'}) {
                const std::string text = {static_cast<char>(byte), attribute};
                if (explaining::has_attribute_bytes(kind, byte)) {
                    expect_as_module(kind, text);
                }
            }
        }
    }
}

TEST(StoredCharacters, AreTheModulesWithoutAttributeBytes)
{
    for (const DocumentKind kind : all_kinds) {
        for (int byte = 0x0F; byte < 0xC0; ++byte) {
            if (!explaining::has_attribute_bytes(kind, byte)) {
                expect_as_module(kind, std::string(1, static_cast<char>(byte)));
            }
        }
    }
}

TEST(StoredCharacters, OfFirstChoiceMayHaveTwoAttributeBytes)
{
    EXPECT_EQ(stored(DocumentKind::first_choice_2, bytes("C1 48 04")).attribute_bytes, 2U);
    EXPECT_EQ(stored(DocumentKind::first_choice_3, bytes("C1 48 44")).attribute_bytes, 2U);
    EXPECT_EQ(stored(DocumentKind::first_choice_3, bytes("C1 08 44")).attribute_bytes, 1U);
    EXPECT_EQ(stored(DocumentKind::professional_write_1, bytes("C1 48 44")).attribute_bytes, 1U);
    EXPECT_EQ(stored(DocumentKind::write_a, bytes("C1 48 44")).attribute_bytes, 1U);
}

TEST(StoredCharacters, MayBeCut)
{
    for (const DocumentKind kind : all_kinds) {
        EXPECT_FALSE(stored(kind, bytes("C1")).complete);
        EXPECT_TRUE(stored(kind, bytes("C1 01")).complete);
        EXPECT_TRUE(stored(kind, bytes("41")).complete);
        EXPECT_EQ(stored(kind, bytes("C1 40")).complete, !is_first_choice(kind));
    }
}

} // namespace
