// What holds for every explained document, whole, cut or damaged: each byte of the file is in
// exactly one span, the text is what the module reports, and every line end agrees with its
// reason.
#include "tests/lib/explain/explained.h"

#include "tests/model/documents.h"
#include "tests/model/kinds.h"
#include "tests/model/random.h"
#include "tests/support/test_document.h"
#include "vs_pfs.h"

#include <filesystem>
#include <fstream>
#include <sstream>

namespace {

using namespace tests;
using namespace pfsdoc;
namespace fs = std::filesystem;

std::string content_of(const fs::path &path)
{
    std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

std::vector<fs::path> sample_paths()
{
    std::vector<fs::path> paths;
    for (const auto &entry : fs::recursive_directory_iterator(SAMPLES_DIRECTORY)) {
        if (entry.path().extension() == ".doc") {
            paths.push_back(entry.path());
        }
    }
    return paths;
}

bool is_known(const std::string &document)
{
    return identify(*source_from(document)).ok();
}

// The module's own account of a document's text: the characters, and how the lines ended that
// ended hard.
struct Account {
    std::string characters;
    std::size_t hard_ends = 0;
};

Account account_of_module(const std::string &document)
{
    const DocumentKind kind = identify(*source_from(document)).value().kind;
    Account account;
    bool text = false;
    for (const Told &told : read_at_once(document, kind).told) {
        text = text || std::get_if<Font>(&told.event) != nullptr;
        const auto *character = std::get_if<Character>(&told.event);
        const auto *line_break = std::get_if<Break>(&told.event);
        if (text && character != nullptr) {
            account.characters.push_back(static_cast<char>(character->byte));
        } else if (text && line_break != nullptr && line_break->code == VW_BREAK_PARAGRAPH) {
            ++account.hard_ends;
        }
    }
    return account;
}

Account account_of_spans(const std::vector<Span> &spans)
{
    Account account;
    for (const Span &span : spans) {
        account.characters += span.kind == SpanKind::header_text ? "" : span.characters;
        account.hard_ends += span.line_end == LineEnd::hard ? 1 : 0;
    }
    return account;
}

std::string bytes_of(const std::vector<Span> &spans)
{
    std::string bytes;
    for (const Span &span : spans) {
        EXPECT_EQ(span.offset, bytes.size());
        EXPECT_FALSE(span.bytes.empty());
        EXPECT_LE(span.bytes.size(), longest_span);
        EXPECT_FALSE(span.words.empty());
        bytes += span.bytes;
    }
    return bytes;
}

void expect_explained(const std::string &document, const std::string &name)
{
    SCOPED_TRACE(name);
    const std::vector<Span> spans = spans_of(document);
    EXPECT_EQ(bytes_of(spans), document);
    const Account expected = account_of_module(document);
    const Account explained = account_of_spans(spans);
    EXPECT_EQ(explained.characters, expected.characters);
    EXPECT_EQ(explained.hard_ends, expected.hard_ends);
    for (const Span &span : spans) {
        EXPECT_FALSE(span.disputed) << span.offset << ": " << span.words;
    }
}

TEST(Partition, OfAllSamples)
{
    const std::vector<fs::path> paths = sample_paths();
    ASSERT_EQ(paths.size(), 14U);
    for (const fs::path &path : paths) {
        expect_explained(content_of(path), path.string());
    }
}

TEST(Partition, OfAllTestDocuments)
{
    const std::vector<fs::path> paths = test_document_paths(DOCUMENTS_DIRECTORY);
    ASSERT_FALSE(paths.empty());
    for (const fs::path &path : paths) {
        const TestDocument document = read_test_document(path);
        expect_explained(document.bytes, document.name);
    }
}

TEST(Partition, OfKindExamplesCutAtEveryLength)
{
    for (const KindExample &example : kind_examples()) {
        const std::string document = document_of(
            example.kind, bytes(example.body),
            {header_line(example.kind, 0, "head"), header_line(example.kind, 3, "foot")});
        for (std::size_t size = 0; size <= document.size(); ++size) {
            const std::string cut = document.substr(0, size);
            if (is_known(cut)) {
                expect_explained(cut, std::string(display_name(example.kind)) + " cut at " +
                                          std::to_string(size));
            }
        }
    }
}

TEST(Partition, OfSamplesCutAnywhere)
{
    model::Random random(11);
    for (const fs::path &path : sample_paths()) {
        const std::string document = content_of(path);
        for (int i = 0; i < 40; ++i) {
            const std::string cut = document.substr(0, random.below(document.size()));
            if (is_known(cut)) {
                expect_explained(cut, path.string() + " cut at " + std::to_string(cut.size()));
            }
        }
    }
}

TEST(Partition, OfTwoThousandMutatedSamples)
{
    const std::vector<fs::path> paths = sample_paths();
    model::Random random(12);
    for (uint32_t i = 0; i < 2000; ++i) {
        std::string document = content_of(paths[i % paths.size()]);
        document.resize(std::min<std::size_t>(document.size(), 8000));
        for (uint32_t change = random.between(1, 8); change > 0; --change) {
            document[random.below(document.size())] = random.byte();
        }
        if (is_known(document)) {
            expect_explained(document, "mutation " + std::to_string(i));
        }
        if (HasFailure()) {
            break; // one is enough
        }
    }
}

// What an attacker would write rather than a word processor: see tests/model.
TEST(Partition, OfGeneratedDocuments)
{
    for (const model::Kind kind : model::all_kinds) {
        for (uint64_t number = 0; number < 500; ++number) {
            model::Random random(number * 100 + static_cast<uint64_t>(kind));
            const std::string document = model::random_document(kind, random);
            if (is_known(document)) {
                expect_explained(document, std::string(model::name_of(kind)) + " document " +
                                               std::to_string(number));
            }
            if (HasFailure()) {
                return;
            }
        }
    }
}

// Fails from a position on, as a damaged disk does.
class FailingSource final : public ByteSource {
public:
    FailingSource(const std::string &document, uint32_t good)
        : source_(source_from(document)), good_(good)
    {
    }

    std::optional<uint32_t> read_at(uint32_t position, std::span<uint8_t> destination) override
    {
        if (position + destination.size() > good_) {
            failed_ = true;
            return std::nullopt;
        }
        return source_->read_at(position, destination);
    }
    uint32_t size() const override
    {
        return source_->size();
    }
    Status failure() const override
    {
        return failed_ ? Status(Error{ErrorKind::input, "fails", ""}) : Status();
    }

private:
    std::unique_ptr<MemorySource> source_;
    uint32_t good_;
    bool failed_ = false;
};

TEST(FailedReads, EndTheExplanationWithTheirError)
{
    for (const fs::path &path : sample_paths()) {
        const std::string document = content_of(path);
        const DocumentKind kind = identify(*source_from(document)).value().kind;
        for (const uint32_t good : {0U, 2048U, 4096U, 6144U, 10000U}) {
            if (good >= document.size()) {
                continue;
            }
            FailingSource source(document, good);
            KeepingSpans sink;
            const Status fault = explain(linked_module(), source, kind, sink);
            ASSERT_FALSE(fault.ok()) << path << " good up to " << good;
            EXPECT_TRUE(fault.error().kind == ErrorKind::input) << fault.error().what;
        }
    }
}

// A sink's exception, such as when memory runs out, passes through the module.
TEST(FailedSinks, AreHeard)
{
    class Refusing final : public SpanSink {
    public:
        void span(const Span &) override
        {
            throw std::bad_alloc();
        }
    };
    for (const KindExample &example : kind_examples()) {
        const auto source = source_from(document_of(example.kind, bytes(example.body)));
        Refusing sink;
        EXPECT_THROW(static_cast<void>(explain(linked_module(), *source, example.kind, sink)),
                     std::bad_alloc);
    }
}

} // namespace
