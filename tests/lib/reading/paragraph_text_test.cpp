// Paragraphs as strings.
#include "pfsdoc/paragraph_text.h"

#include <gtest/gtest.h>

#include <initializer_list>
#include <string>
#include <string_view>

namespace {

using namespace pfsdoc;
using namespace std::string_view_literals;

struct Part {
    PieceKind kind;
    std::string_view bytes;
};

Paragraph paragraph_of(std::initializer_list<Part> parts)
{
    Paragraph paragraph;
    for (const Part &part : parts) {
        paragraph.pieces.push_back({paragraph.bytes.size(), 0, 0, part.kind, false});
        paragraph.bytes += part.bytes;
    }
    return paragraph;
}

TEST(ParagraphPieces, HaveTheirBytesAndAttributes)
{
    Paragraph paragraph = paragraph_of(
        {{PieceKind::text, "one "}, {PieceKind::command, "*J*"}, {PieceKind::text, "two"}});
    paragraph.pieces.back().attributes =
        attribute_bit(AttributeCode::bold) | attribute_bit(AttributeCode::superscript);
    std::string bytes;
    for (const Piece &piece : paragraph.pieces) {
        bytes.append(piece.has(AttributeCode::bold) ? "b" : "")
            .append(paragraph.piece_bytes(piece));
        EXPECT_FALSE(piece.has(AttributeCode::italic));
    }
    EXPECT_EQ(bytes, "one *J*btwo");
    EXPECT_EQ(attribute_bit(AttributeCode::bold), attribute_bit(2));
}

std::string text_of_one(std::string_view bytes)
{
    return plain_text(paragraph_of({{PieceKind::text, bytes}}));
}

TEST(ParagraphText, IsUtf8)
{
    EXPECT_EQ(text_of_one("R\x8Agles de pr\x88t"), "Règles de prêt");
    EXPECT_EQ(text_of_one("14\xABo"), "14½o");
    EXPECT_EQ(text_of_one(""), "");
    EXPECT_EQ(plain_text(Paragraph{}), "");
}

TEST(ParagraphText, IsReadInTheGivenCharacterSet)
{
    const Result<CodePage> page = CodePage::named("865");
    ASSERT_TRUE(page.ok());
    const Paragraph paragraph = paragraph_of({{PieceKind::text, "\x9D and \x9B"}});
    EXPECT_EQ(plain_text(paragraph, page.value()), "Ø and ø");
    EXPECT_EQ(plain_text(paragraph), "¥ and ¢");
}

TEST(ParagraphText, JoinsPiecesAndLeavesCommandsOut)
{
    EXPECT_EQ(plain_text(paragraph_of({{PieceKind::text, "Dear "},
                                       {PieceKind::text, "Sir"},
                                       {PieceKind::command, "*JOIN names*"},
                                       {PieceKind::page_break, ""},
                                       {PieceKind::text, ", or Madam"}})),
              "Dear Sir, or Madam");
    EXPECT_EQ(plain_text(paragraph_of({{PieceKind::command, "*CENTER*"}})), "");
}

TEST(ParagraphText, KeepsTabs)
{
    EXPECT_EQ(text_of_one("\t"), "\t");
    EXPECT_EQ(text_of_one("one\ttwo\t\tthree\t"), "one\ttwo\t\tthree\t");
    EXPECT_EQ(text_of_one("\t\x8A"), "\tè");
}

// All other bytes are characters, so the result cannot control a terminal.
TEST(ParagraphText, HasNoOtherControlCharacters)
{
    std::string all;
    for (int byte = 0; byte < 256; ++byte) {
        all += static_cast<char>(byte);
    }
    for (const char byte : text_of_one(all)) {
        const auto value = static_cast<unsigned char>(byte);
        EXPECT_TRUE(value == '\t' || (value >= ' ' && value != 0x7F)) << int{value};
    }
    EXPECT_EQ(text_of_one("a\0b"sv), "a b");
    EXPECT_EQ(text_of_one("\x1B[31m"), "←[31m");
    EXPECT_EQ(text_of_one("\r\n"), "♪◙");
}

} // namespace
