// What the formats hold of the worst paragraphs, as their allocations show: never 64 MB. The
// largest ones that are held are those just below the limits; beyond them the error says where.
//
// The program's own operators new and delete count what is allocated at a time.
#include "pfsdoc/document.h"
#include "pfsdoc/formats.h"
#include "pfsdoc/writer.h"
#include "tests/support/raw_documents.h"
#include "vs_pfs.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <malloc.h>
#include <memory>
#include <new>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace {

std::size_t held = 0;
std::size_t most_held = 0;

void *counted(std::size_t size)
{
    void *const block = std::malloc(size);
    if (block == nullptr) {
        throw std::bad_alloc();
    }
    held += ::malloc_usable_size(block);
    most_held = held > most_held ? held : most_held;
    return block;
}

void uncounted(void *block)
{
    if (block != nullptr) {
        held -= ::malloc_usable_size(block);
        std::free(block);
    }
}

} // namespace

void *operator new(std::size_t size)
{
    return counted(size);
}
void operator delete(void *block) noexcept
{
    uncounted(block);
}
void operator delete(void *block, std::size_t) noexcept
{
    uncounted(block);
}

namespace {

using namespace pfsdoc;

constexpr std::size_t most_bytes = std::size_t{64} << 20;

// Not held by the test: a document's header, then a pattern over and over, without an end.
class Repeated final : public ByteSource {
public:
    Repeated(std::string head, const std::string &pattern, uint32_t size)
        : head_(std::move(head)), period_(pattern.size()), size_(size)
    {
        while (body_.size() < VW_STREAM_BUFFER_SIZE + period_) {
            body_ += pattern;
        }
    }
    std::optional<uint32_t> read_at(uint32_t position, std::span<uint8_t> destination) override
    {
        std::size_t count = 0;
        while (count < destination.size() && position + count < size_) {
            const std::string_view part = part_at(position + count);
            const std::size_t length =
                std::min({part.size(), destination.size() - count, size_ - position - count});
            std::copy_n(part.begin(), length, destination.begin() + static_cast<ptrdiff_t>(count));
            count += length;
        }
        return static_cast<uint32_t>(count);
    }
    uint32_t size() const override
    {
        return size_;
    }
    Status failure() const override
    {
        return {};
    }

private:
    std::string_view part_at(std::size_t position) const
    {
        return position < head_.size()
                   ? std::string_view(head_).substr(position)
                   : std::string_view(body_).substr((position - head_.size()) % period_);
    }

    std::string head_;
    std::size_t period_;
    std::string body_; // the pattern, often enough for a read
    uint32_t size_;
};

class Nothing final : public Output {
public:
    void write(std::string_view) override {}
};

// A document's bytes up to its text.
std::string write_head()
{
    return tests::write_document(1, "\r");
}
std::string assistant_head()
{
    return tests::write_document(3, "\r");
}

constexpr uint32_t beyond_all_limits = 16'000'000;

struct Case {
    const char *name;
    std::string head;
    std::string pattern;
    uint32_t size;
};

class WriterMemory : public testing::TestWithParam<Case> {};

void expect_bounded(const Format &format, const WriterOptions &options)
{
    const Case &body = WriterMemory::GetParam();
    OpenOptions open_options;
    open_options.source_offsets = format.wants_offsets || options.raw_lines;
    auto document = Document::from_source(
        std::make_unique<Repeated>(body.head, body.pattern, body.size), open_options);
    ASSERT_TRUE(document.ok());
    Nothing output;
    const std::size_t held_before = held;
    most_held = held;
    Status ended;
    if (format.make_writer != nullptr) {
        const auto writer = format.make_writer(output, {}, options);
        ended = document.value().read(*writer.value());
    } else {
        const auto writer = format.make_event_writer(output, options);
        ended = document.value().read_events(*writer);
        writer->finish();
    }
    EXPECT_LT(most_held - held_before, most_bytes) << format.name;
    ASSERT_FALSE(ended.ok()); // it has no end
    EXPECT_EQ(ended.error().kind, body.size < beyond_all_limits || format.make_writer == nullptr
                                      ? ErrorKind::damaged
                                      : ErrorKind::limit);
    EXPECT_TRUE(ended.error().offset) << format.name;
}

TEST_P(WriterMemory, IsBounded)
{
    for (const Format *format : formats()) {
        if (format->name != "odt") { // the same as fodt, compressed
            expect_bounded(*format, {});
        }
    }
    WriterOptions raw;
    raw.raw_lines = true;
    expect_bounded(*find_format("text"), raw);
    WriterOptions endless;
    endless.wrap = 0;
    expect_bounded(*find_format("text"), endless);
}

INSTANTIATE_TEST_SUITE_P(
    Bodies, WriterMemory,
    testing::Values(Case{"Letters", write_head(), "a", beyond_all_limits},
                    Case{"Attributes", write_head(), "\xE1\x02\xE2\x01", beyond_all_limits},
                    Case{"MostTabs", write_head(), "\t", 8'380'000},
                    Case{"MostBytesInUtf8", assistant_head(), "\xB0", 8'380'000},
                    Case{"MostAttributes", write_head(), "\xE1\x02\xE2\x01", 1'040'000},
                    Case{"MostCommands", write_head(), "a*P *", 1'300'000},
                    Case{"CommandsBetweenWords", write_head(), std::string(20, 'a') + "*P *",
                         6'200'000}),
    [](const testing::TestParamInfo<Case> &tested) { return tested.param.name; });

} // namespace
