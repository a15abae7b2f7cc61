// Documents as blocks, read as a whole, block by block, and resumed from every position.
#include "pfsdoc/document.h"

#include "pfsdoc/reading_stopped.h"
#include "tests/model/documents.h"
#include "tests/model/kinds.h"
#include "tests/model/random.h"
#include "tests/support/memory_block_file.h"
#include "tests/support/raw_documents.h"
#include "vs_pfs.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <thread>

namespace {

using pfsdoc::Block;
using pfsdoc::BlockKind;
using pfsdoc::Document;
using pfsdoc::DocumentKind;
using pfsdoc::ErrorKind;
using pfsdoc::OpenOptions;
using pfsdoc::Paragraph;
using pfsdoc::ResumeToken;

std::vector<uint8_t> bytes_of(const std::string &text)
{
    return {text.begin(), text.end()};
}

Document opened(const std::string &bytes, const OpenOptions &options = {})
{
    auto document = Document::from_bytes(bytes_of(bytes), options);
    EXPECT_TRUE(document.ok()) << document.error().what;
    return std::move(document.value());
}

// A document's blocks as read() delivers them.
class Collected final : public pfsdoc::BlockSink {
public:
    void paragraph(const Paragraph &paragraph) override
    {
        Block block;
        block.kind = kind_;
        block.paragraph = paragraph;
        blocks.push_back(block);
    }
    void page_break(uint32_t source) override
    {
        if (!blocks.empty() && blocks.back().kind == Block::Kind::page_break) {
            ++blocks.back().page_breaks;
            return;
        }
        Block block;
        block.kind = Block::Kind::page_break;
        block.source = source;
        block.page_breaks = 1;
        blocks.push_back(block);
    }
    void block_begin(BlockKind kind) override
    {
        kind_ = kind == BlockKind::header ? Block::Kind::header_line : Block::Kind::footer_line;
    }
    void block_end() override
    {
        kind_ = Block::Kind::paragraph;
    }
    void end_of_document() override
    {
        ++ends;
    }

    std::vector<Block> blocks;
    int ends = 0;

private:
    Block::Kind kind_ = Block::Kind::paragraph;
};

std::vector<Block> read_at_once(Document &document)
{
    Collected collected;
    const pfsdoc::Status fault = document.read(collected);
    EXPECT_TRUE(fault.ok() || fault.error().kind == ErrorKind::damaged);
    EXPECT_EQ(collected.ends, 1);
    return collected.blocks;
}

// The rest of a document.
std::vector<Block> read_on(Document &document)
{
    std::vector<Block> blocks;
    for (;;) {
        auto block = document.next();
        if (!block.ok()) {
            EXPECT_EQ(block.error().kind, ErrorKind::damaged);
            return blocks;
        }
        if (!block.value()) {
            return blocks;
        }
        blocks.push_back(*block.value());
    }
}

ResumeToken place_of(Document &document)
{
    auto place = document.place();
    EXPECT_TRUE(place.ok()) << place.error().what;
    return place.value();
}

// Reads one block at a time, each in a document of its own that knows nothing but a token.
std::vector<Block> read_in_steps(const std::string &bytes, std::size_t most)
{
    std::vector<Block> blocks;
    std::string token = place_of(*std::make_unique<Document>(opened(bytes))).text();
    while (blocks.size() <= most) {
        Document document = opened(bytes);
        const auto place = ResumeToken::parse(token);
        EXPECT_TRUE(place.ok());
        EXPECT_TRUE(document.resume(place.value()).ok());
        const auto block = document.next();
        if (!block.ok() || !block.value()) {
            break;
        }
        blocks.push_back(*block.value());
        token = place_of(document).text();
    }
    return blocks;
}

std::vector<std::filesystem::path> sample_paths()
{
    std::vector<std::filesystem::path> paths;
    for (const auto &entry : std::filesystem::recursive_directory_iterator(SAMPLES_DIRECTORY)) {
        if (entry.path().extension() == ".doc") {
            paths.push_back(entry.path());
        }
    }
    return paths;
}

std::string file_bytes(const std::filesystem::path &path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

// ---------------------------------------------------------------------- samples --------

TEST(Document, GivesTheSameBlocksHoweverASampleIsRead)
{
    const auto paths = sample_paths();
    ASSERT_EQ(paths.size(), 14U);
    for (const auto &path : paths) {
        const std::string bytes = file_bytes(path);
        Document document = opened(bytes);
        const std::vector<Block> blocks = read_at_once(document);
        EXPECT_GT(blocks.size(), 3U) << path;
        EXPECT_TRUE(read_on(document) == blocks) << path;
        EXPECT_TRUE(read_in_steps(bytes, blocks.size()) == blocks) << path;
    }
}

TEST(Document, GivesTheSameBlocksHoweverADamagedDocumentIsRead)
{
    constexpr uint64_t documents = 400;
    for (uint64_t number = 1; number <= documents; ++number) {
        tests::model::Random random(number);
        const auto kind = tests::model::all_kinds[number % tests::model::all_kinds.size()];
        const std::string bytes = tests::model::random_document(kind, random);
        auto document = Document::from_bytes(bytes_of(bytes));
        if (!document.ok()) {
            EXPECT_EQ(document.error().kind, ErrorKind::not_a_document) << number;
            continue;
        }
        const std::vector<Block> blocks = read_at_once(document.value());
        ASSERT_TRUE(read_on(document.value()) == blocks) << "document " << number;
        ASSERT_TRUE(read_in_steps(bytes, blocks.size()) == blocks) << "document " << number;
    }
}

// ------------------------------------------------------------------- what it tells ----

TEST(Document, ReportsItsKindAndTheEvidence)
{
    const Document document = opened(tests::choice_document('3', "Dear Sir\x0D\x0E"));
    EXPECT_EQ(document.kind(), DocumentKind::first_choice_3);
    EXPECT_EQ(document.identity().basis, "\"GERBILDOC\" at 9, generation \"3\" at 18");
    EXPECT_EQ(document.size(), tests::choice_body_offset + 10);
}

TEST(Document, ReportsThePageSetup)
{
    Document document = opened(tests::choice_document('3', "Dear Sir\x0D\x0E"));
    const auto setup = document.page_setup();
    ASSERT_TRUE(setup.ok());
    EXPECT_EQ(setup.value().margins, (pfsdoc::Margins{0, 60 * VW_TWIPS_PER_COLUMN}));
    EXPECT_TRUE(setup.value().tab_stops.empty());
}

TEST(Document, GivesParagraphsWithTheirOffsets)
{
    Document document = opened(tests::write_document(2, "\rOne\r\rTwo\r\x0E"));
    const auto first = document.next();
    ASSERT_TRUE(first.ok() && first.value());
    EXPECT_EQ(first.value()->kind, Block::Kind::paragraph);
    EXPECT_EQ(first.value()->paragraph.bytes, "One");
    // With the line end before it, which is skipped.
    EXPECT_EQ(first.value()->paragraph.pieces.front().source, tests::write_body_offset);
}

TEST(Document, GivesNoOffsetsUnlessRequested)
{
    OpenOptions options;
    options.source_offsets = false;
    Document document = opened(tests::write_document(2, "\rOne\r\rTwo\r\x0E"), options);
    const std::vector<Block> blocks = read_on(document);
    ASSERT_FALSE(blocks.empty());
    for (const Block &block : blocks) {
        EXPECT_EQ(block.paragraph.source_end, 0U);
    }
}

TEST(Document, CountsPageBreaksInARow)
{
    const std::string page_break_line = "\x08\r";
    const std::string body = "\x40\x01"
                             "One\r" +
                             page_break_line + page_break_line + page_break_line +
                             "\x18"
                             "Two\r\x0E";
    Document document = opened(tests::choice_document('3', body));
    const std::vector<Block> blocks = read_on(document);
    ASSERT_EQ(blocks.size(), 3U);
    EXPECT_EQ(blocks[1].kind, Block::Kind::page_break);
    EXPECT_EQ(blocks[1].page_breaks, 3U);
}

TEST(Document, SetsHeaderAndFooterLinesApart)
{
    Document document = opened(tests::write_document(
        2, "\rBody\r\x0E",
        {tests::write_header_line(0, "Top"), tests::write_header_line(2, "Bottom")}));
    const std::vector<Block> blocks = read_on(document);
    ASSERT_GE(blocks.size(), 3U);
    EXPECT_EQ(blocks[0].kind, Block::Kind::header_line);
    EXPECT_EQ(blocks[0].paragraph.bytes, "Top");
    EXPECT_EQ(blocks[1].kind, Block::Kind::footer_line);
    EXPECT_EQ(blocks[1].paragraph.bytes, "Bottom");
    EXPECT_EQ(blocks[2].paragraph.bytes, "Body");
}

std::vector<std::size_t> line_starts(const std::string &document)
{
    Document opened_document = opened(document);
    const std::vector<Block> blocks = read_on(opened_document);
    return blocks.empty() ? std::vector<std::size_t>() : blocks.front().paragraph.line_starts;
}

// Where lines are joined by a space, the space is the end of one line or the start of the next.
TEST(Document, ReportsWhereTheLinesOfTheFileBegin)
{
    const pfsdoc::Block none;
    EXPECT_TRUE(none.paragraph.line_starts.empty());
    const tests::Patches narrow = {tests::write_margins(0, 19)};
    EXPECT_EQ(line_starts(tests::write_document(
                  2, "\rsixteen letters.\rfourteen words\rlengthy\r\x0E", narrow)),
              (std::vector<std::size_t>{16, 31}));
    EXPECT_EQ(
        line_starts(tests::write_document(2, "\rsixteen lette \xF2\x0D jumping\r\x0E", narrow)),
        (std::vector<std::size_t>{}));
    EXPECT_EQ(
        line_starts(tests::write_document(4, std::string("\x00one\0two\x01\x0E", 10), narrow)),
        (std::vector<std::size_t>{4}));
    const tests::Patches narrow_choice = {tests::choice_margins(0, 19)};
    EXPECT_EQ(line_starts(tests::choice_document('2', "sixteen letters.\x0Cjumping\x0C\x0E",
                                                 narrow_choice)),
              (std::vector<std::size_t>{16}));
    EXPECT_EQ(line_starts(tests::choice_document('3', "\x10sixteen letters.\r\x10jumping\x0E",
                                                 narrow_choice)),
              (std::vector<std::size_t>{16}));
}

// ----------------------------------------------------------------------- its limits ---

TEST(Document, EndsWithAParagraphThatIsTooLarge)
{
    const std::string line = "sixteen letters. ";
    std::string body = "\r";
    while (body.size() <= pfsdoc::max_paragraph_bytes + 4096) {
        body += line;
    }
    const std::string bytes = tests::write_document(2, body + "\r\x0E");
    OpenOptions options;
    options.source_offsets = false;
    Document document = opened(bytes, options);
    Collected collected;
    const pfsdoc::Status at_once = document.read(collected);
    ASSERT_FALSE(at_once.ok());
    EXPECT_EQ(at_once.error().kind, ErrorKind::limit);
    // Characters are handed on together, 1024 at most.
    const uint64_t limit = bytes.find("sixteen") + pfsdoc::max_paragraph_bytes;
    ASSERT_TRUE(at_once.error().offset);
    EXPECT_GE(*at_once.error().offset, limit);
    EXPECT_LE(*at_once.error().offset, limit + 1025);
    EXPECT_EQ(collected.ends, 0);
    const auto block = document.next();
    ASSERT_FALSE(block.ok());
    EXPECT_EQ(block.error().kind, ErrorKind::limit);
}

TEST(Document, EndsWithAParagraphOfTooManyPieces)
{
    std::string body = "\r";
    for (std::size_t i = 0; i <= pfsdoc::max_paragraph_pieces; ++i) {
        body += i % 2 == 0 ? "\xE1\x02" : "\xE2\x01";
    }
    const std::string bytes = tests::write_document(2, body + "\x0E");
    for (const bool with_offsets : {false, true}) {
        OpenOptions options;
        options.source_offsets = with_offsets;
        Collected collected;
        const pfsdoc::Status ended = opened(bytes, options).read(collected);
        ASSERT_FALSE(ended.ok());
        EXPECT_EQ(ended.error().kind, ErrorKind::limit);
        // Without offsets a character is handed on with what follows it.
        const uint64_t first = bytes.find("\xE1\x02");
        const uint64_t expected = first + 2 * pfsdoc::max_paragraph_pieces + 2;
        EXPECT_EQ(ended.error().offset, with_offsets ? expected : expected + 1);
        EXPECT_TRUE(collected.blocks.empty());
    }
}

// A line of First Choice 3 that goes on in the next.
TEST(Document, EndsWithAParagraphOfTooManyLinesWhereTheyAreWanted)
{
    std::string body = "\x10";
    for (std::size_t i = 0; i <= pfsdoc::max_paragraph_lines + 1; ++i) {
        body += "a\r\x10";
    }
    const std::string bytes = tests::choice_document('3', body + "\x0E");
    for (const bool with_offsets : {false, true}) {
        OpenOptions options;
        options.source_offsets = with_offsets;
        Collected collected;
        const pfsdoc::Status ended = opened(bytes, options).read(collected);
        EXPECT_EQ(ended.ok(), !with_offsets);
        EXPECT_EQ(collected.blocks.size(), with_offsets ? 0U : 1U);
    }
}

TEST(Document, EndsWhereASinkStopsIt)
{
    class Stopper final : public pfsdoc::BlockSink {
    public:
        void paragraph(const Paragraph &) override
        {
            ++paragraphs;
            throw pfsdoc::ReadingStopped({ErrorKind::limit, "enough", ""});
        }
        void page_break(uint32_t) override {}
        void block_begin(BlockKind) override {}
        void block_end() override {}
        void end_of_document() override {}
        int paragraphs = 0;
    };
    Document document = opened(tests::write_document(2, "\rOne\r\rTwo\r\x0E"));
    Stopper stopper;
    const pfsdoc::Status status = document.read(stopper);
    ASSERT_FALSE(status.ok());
    EXPECT_EQ(status.error().what, "enough");
    EXPECT_EQ(stopper.paragraphs, 1);
}

// ------------------------------------------------------------- where it comes from ----

TEST(Document, OpensAFile)
{
    const auto document = Document::open(sample_paths().front().string());
    EXPECT_TRUE(document.ok());
}

TEST(Document, RefusesAMissingFile)
{
    const auto document = Document::open("no such file");
    ASSERT_FALSE(document.ok());
    EXPECT_EQ(document.error().kind, ErrorKind::input);
}

TEST(Document, RefusesAFileThatIsNotADocument)
{
    const auto document = Document::from_bytes(bytes_of("Dear Sir"));
    ASSERT_FALSE(document.ok());
    EXPECT_EQ(document.error().kind, ErrorKind::not_a_document);
}

TEST(Document, ReadsAHostsOwnFile)
{
    const std::string bytes = tests::write_document(2, "\rOne\r\rTwo\r\x0E");
    tests::MemoryBlockFile file(bytes);
    file.most_per_read = 3;
    auto document = Document::from_block_file(file);
    ASSERT_TRUE(document.ok());
    Document whole = opened(bytes);
    EXPECT_TRUE(read_on(document.value()) == read_on(whole));
    EXPECT_EQ(file.closes, 0U);
}

TEST(Document, ReportsThatAHostsFileFails)
{
    tests::MemoryBlockFile file(tests::write_document(2, "\rOne\r\rTwo\r\x0E"));
    auto document = Document::from_block_file(file);
    ASSERT_TRUE(document.ok());
    file.fail_reads = true;
    const auto block = document.value().next();
    ASSERT_FALSE(block.ok());
    EXPECT_EQ(block.error().kind, ErrorKind::input);
    EXPECT_FALSE(document.value().place().ok());
}

TEST(Document, RefusesAHostsFileThatCannotBeMeasured)
{
    tests::MemoryBlockFile file(tests::write_document(2, "\rOne\r\x0E"));
    file.fail_tells = true;
    const auto document = Document::from_block_file(file);
    ASSERT_FALSE(document.ok());
    EXPECT_EQ(document.error().kind, ErrorKind::input);
}

// --------------------------------------------------------------------------- errors ---

TEST(Document, ReportsWhereATruncatedDocumentEnds)
{
    const std::string bytes = tests::write_document(2, "\rOne\rTw");
    Document document = opened(bytes);
    std::size_t blocks = 0;
    for (;;) {
        const auto block = document.next();
        if (!block.ok()) {
            EXPECT_EQ(block.error().kind, ErrorKind::damaged);
            EXPECT_EQ(block.error().offset, bytes.size());
            break;
        }
        ASSERT_TRUE(block.value());
        ++blocks;
    }
    EXPECT_GT(blocks, 0U);
    EXPECT_FALSE(document.next().ok()); // and again
}

// --------------------------------------------------------------------------- tokens ---

TEST(ResumeToken, IsRefusedByAnotherDocument)
{
    Document one = opened(tests::write_document(2, "\rOne\r\x0E"));
    Document other = opened(tests::write_document(1, "\rOne\r\x0E"));
    Document longer = opened(tests::write_document(2, "\rOne more\r\x0E"));
    OpenOptions options;
    options.source_offsets = false;
    Document without = opened(tests::write_document(2, "\rOne\r\x0E"), options);
    const ResumeToken token = place_of(one);
    for (Document *document : {&other, &longer, &without}) {
        const pfsdoc::Status refusal = document->resume(token);
        ASSERT_FALSE(refusal.ok());
        EXPECT_EQ(refusal.error().kind, ErrorKind::usage);
    }
    EXPECT_TRUE(one.resume(token).ok());
}

TEST(ResumeToken, IsReadBackFromItsText)
{
    Document document = opened(tests::write_document(2, "\rOne\r\rTwo\r\x0E"));
    ASSERT_TRUE(document.next().ok());
    const std::string text = place_of(document).text();
    EXPECT_EQ(text.find('\n'), std::string::npos);
    EXPECT_EQ(ResumeToken::parse(text).value().text(), text);
}

// Every truncation and many changes of a token are refused, or read to the end and nothing worse.
TEST(ResumeToken, DoesNoHarmWhenItWasTamperedWith)
{
    const std::string bytes = tests::write_document(2, "\rOne\r\rTwo\r\x0E");
    Document document = opened(bytes);
    ASSERT_TRUE(document.next().ok());
    const std::string text = place_of(document).text();
    std::size_t refused = 0;
    for (std::size_t at = 0; at < text.size(); ++at) {
        EXPECT_FALSE(ResumeToken::parse(text.substr(0, at)).ok()) << at;
        std::string changed = text;
        changed[at] = changed[at] == '1' ? '7' : '1';
        const auto token = ResumeToken::parse(changed);
        Document again = opened(bytes);
        if (!token.ok() || !again.resume(token.value()).ok()) {
            ++refused;
            continue;
        }
        read_on(again);
    }
    EXPECT_GT(refused, 100U);
    EXPECT_LT(refused, text.size());
}

// Found by fuzzing: such numbers were converted, which is not defined.
TEST(ResumeToken, IsRefusedWithNumbersThatDoNotFit)
{
    Document document = opened(tests::write_document(2, "\rOne\r\rTwo\r\x0E"));
    ASSERT_TRUE(document.next().ok());
    const std::string text = place_of(document).text();
    for (const char *key : {"file_id", "size", "start_hash", "position", "blocks_before",
                            "alignment", "attributes", "line_spacing", "offset_before"}) {
        for (const char *number :
             {"1e63", "-1e63", "0.5", "99999999999999999999", "-9223372036854775808", "\"1\""}) {
            std::string changed = text;
            const std::size_t begin = changed.find(std::string("\"") + key + "\":");
            ASSERT_NE(begin, std::string::npos) << key;
            const std::size_t value = changed.find(':', begin) + 1;
            changed.replace(value, changed.find_first_of(",}", value) - value, number);
            EXPECT_FALSE(ResumeToken::parse(changed).ok()) << key << " " << number;
        }
    }
}

TEST(ResumeToken, IsRefusedIfInvalid)
{
    for (const char *text : {"", "[]", "{}", "null", "{\"pfsdoc_place\":2}",
                             "{\"pfsdoc_place\":\"1\"}", "{\"pfsdoc_place\":1}"}) {
        const auto token = ResumeToken::parse(text);
        ASSERT_FALSE(token.ok()) << text;
        EXPECT_EQ(token.error().kind, ErrorKind::usage);
    }
}

// -------------------------------------------------------------------------- threads ---

TEST(Document, IsIndependentOfThoseInOtherThreads)
{
    const auto paths = sample_paths();
    std::vector<std::vector<Block>> blocks(paths.size());
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < paths.size(); ++i) {
        threads.emplace_back([&paths, &blocks, i] {
            Document document = opened(file_bytes(paths[i]));
            blocks[i] = read_on(document);
        });
    }
    for (std::thread &thread : threads) {
        thread.join();
    }
    for (std::size_t i = 0; i < paths.size(); ++i) {
        Document document = opened(file_bytes(paths[i]));
        EXPECT_TRUE(blocks[i] == read_at_once(document)) << paths[i];
    }
}

} // namespace
