// What follows a document's end mark: found in every kind of document and by every way of reading,
// and told from padding.
#include "lib/reading/after_end.h"

#include "pfsdoc/document.h"
#include "tests/lib/reading/host_bench.h"
#include "tests/support/memory_block_file.h"

#include <algorithm>

namespace {

using namespace tests;
using namespace pfsdoc;
using namespace std::string_literals;

std::optional<AfterEnd> found(const std::string &rest, uint32_t end = 0)
{
    const auto source = source_from(rest);
    const auto result = reading::find_after_end(*source, end);
    EXPECT_TRUE(result.ok());
    return result.value();
}

TEST(AfterEnd, IsNoPadding)
{
    EXPECT_EQ(found(""), std::nullopt);
    EXPECT_EQ(found("\0"s), std::nullopt);
    EXPECT_EQ(found(std::string(127, '\x1A')), std::nullopt);
    EXPECT_EQ(found("\x1A\xF6\xF6\xE5\x00\x1A"s), std::nullopt);
    EXPECT_EQ(found(std::string(100000, '\xF6') + std::string(100000, '\xE5')), std::nullopt);
    EXPECT_EQ(found(std::string(511, 'N')), std::nullopt);
    EXPECT_EQ(found("\0\0NNNN\x1A"s), std::nullopt);
    EXPECT_EQ(found(std::string(200000, 'N')), std::nullopt);
}

TEST(AfterEnd, IsWhatStandsBetweenThePadding)
{
    EXPECT_EQ(found("older"), (AfterEnd{0, 5}));
    EXPECT_EQ(found("xxxolder", 3), (AfterEnd{3, 5}));
    EXPECT_EQ(found("\x1A\0older\0text\xF6\xF6"s), (AfterEnd{2, 10}));
    EXPECT_EQ(found("\0\0x\0\0"s), (AfterEnd{2, 1}));
    EXPECT_EQ(found("xx\0x"s), (AfterEnd{0, 4}));
    EXPECT_EQ(found("xxxxxy"), (AfterEnd{0, 6}));
}

// Wherever the pieces that are read begin and end.
TEST(AfterEnd, IsFoundInAFileOfAnySize)
{
    constexpr std::size_t piece = 65536;
    for (const std::size_t before : {piece - 1, piece, piece + 1, 3 * piece}) {
        const std::string fill(before, '\0');
        const auto offset = static_cast<uint32_t>(before);
        EXPECT_EQ(found(fill + "old" + fill), (AfterEnd{offset, 3}));
        EXPECT_EQ(found("x" + fill + "x" + fill), (AfterEnd{0, offset + 2}));
        EXPECT_EQ(found("x" + fill), (AfterEnd{0, 1}));
        EXPECT_EQ(found(std::string(before, 'x') + "x" + fill), std::nullopt);
        EXPECT_EQ(found(std::string(before, 'x') + "y" + fill), (AfterEnd{0, offset + 1}));
    }
}

TEST(AfterEnd, FailsWhereTheFileCannotBeRead)
{
    class Unreadable final : public ByteSource {
    public:
        std::optional<uint32_t> read_at(uint32_t, std::span<uint8_t>) override
        {
            return std::nullopt;
        }
        uint32_t size() const override
        {
            return 10;
        }
    };
    Unreadable source;
    const auto result = reading::find_after_end(source, 3);
    ASSERT_FALSE(result.ok());
    EXPECT_EQ(result.error().kind, ErrorKind::input);
}

// --------------------------------------------------------------------- documents ------

Document opened(const std::string &document)
{
    auto result = Document::from_bytes({document.begin(), document.end()});
    EXPECT_TRUE(result.ok());
    return std::move(result.value());
}

class EndingSink final : public BlockSink {
public:
    void paragraph(const Paragraph &) override
    {
        EXPECT_FALSE(ended);
        EXPECT_EQ(rest, std::nullopt);
    }
    void page_break(uint32_t) override {}
    void block_begin(BlockKind) override {}
    void block_end() override {}
    void after_end(const AfterEnd &found) override
    {
        EXPECT_FALSE(ended);
        EXPECT_EQ(rest, std::nullopt);
        rest = found;
    }
    void end_of_document() override
    {
        EXPECT_FALSE(ended);
        ended = true;
    }

    std::optional<AfterEnd> rest;
    bool ended = false;
};

std::optional<AfterEnd> after_end_of(Document &document)
{
    const auto rest = document.after_end();
    EXPECT_TRUE(rest.ok());
    return rest.value();
}

// Asked for before anything is read, after all is read at once, and after the last block.
void expect_after_end(const std::string &bytes, const std::optional<AfterEnd> &expected)
{
    Document unread = opened(bytes);
    EXPECT_EQ(after_end_of(unread), expected);

    Document document = opened(bytes);
    EndingSink sink;
    EXPECT_TRUE(document.read(sink).ok());
    EXPECT_TRUE(sink.ended);
    EXPECT_EQ(sink.rest, expected);
    EXPECT_EQ(after_end_of(document), expected);
    EndingSink again;
    EXPECT_TRUE(document.read(again).ok());
    EXPECT_EQ(again.rest, expected);

    Document stepped = opened(bytes);
    for (auto block = stepped.next(); block.ok() && block.value(); block = stepped.next()) {
    }
    EXPECT_EQ(after_end_of(stepped), expected);
}

// The older letter ends in an end mark of its own: nothing at the file's end gives it away.
TEST(DocumentAfterEnd, IsReportedForEveryKind)
{
    for (const KindExample &example : kind_examples()) {
        const std::string document =
            document_of(example.kind, bytes(example.body), {header_line(example.kind, 0, "Head")});
        const auto end = static_cast<uint32_t>(document.size());
        expect_after_end(document, std::nullopt);
        expect_after_end(document + std::string(100, '\x1A'), std::nullopt);
        expect_after_end(document + "of an older letter\r\x0E", AfterEnd{end, 20});
        expect_after_end(document + "\0\0of an older letter\r\x0E\0\0"s, AfterEnd{end + 2, 20});
    }
}

TEST(DocumentAfterEnd, IsNothingWhereTheDocumentHasNoEnd)
{
    Document document = opened(write_document(2, "\rcut off"));
    EndingSink sink;
    EXPECT_FALSE(document.read(sink).ok());
    EXPECT_TRUE(sink.ended);
    EXPECT_EQ(sink.rest, std::nullopt);
    EXPECT_EQ(after_end_of(document), std::nullopt);
}

} // namespace
