// Files that other programs write to while they are converted: what was hashed is what was
// converted, or nothing was.
#include "batch/sandboxed/checked_source.h"
#include "batch/sandboxed/convert_file.h"
#include "batch/sandboxed/test_hook.h"
#include "lib/base/scratch_file.h"
#include "lib/base/transfers.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <fstream>
#include <functional>
#include <sstream>
#include <unistd.h>

namespace {

std::function<void()> meanwhile; // between the digest and the conversion

} // namespace

void pfsdoc::batch::add_test_hook_option(CLI::App &) {}

void pfsdoc::batch::run_test_hook(ByteSource &, Output &)
{
    if (meanwhile) {
        meanwhile();
    }
}

namespace {

using pfsdoc::base::Descriptor;
using pfsdoc::batch::CheckedSource;
using pfsdoc::batch::FileStatus;
using pfsdoc::batch::sha256_of;

constexpr std::size_t block = CheckedSource::block_size;
constexpr std::size_t small = CheckedSource::most_in_memory;

Descriptor file_of(std::string_view bytes)
{
    Descriptor file(pfsdoc::base::open_scratch_file());
    EXPECT_TRUE(pfsdoc::base::write_all_at(file.get(), bytes, 0));
    return file;
}

std::string numbered_bytes(std::size_t size)
{
    std::string bytes(size, '\0');
    for (std::size_t i = 0; i < size; ++i) {
        bytes[i] = static_cast<char>(i * 31 + i / 251);
    }
    return bytes;
}

std::unique_ptr<CheckedSource> source_of(const Descriptor &file, uint64_t size)
{
    auto source = CheckedSource::read(Descriptor(::dup(file.get())), size);
    EXPECT_TRUE(source.ok());
    return std::move(source.value());
}

std::optional<std::string> read(CheckedSource &source, std::size_t position, std::size_t size)
{
    std::vector<uint8_t> bytes(size);
    const auto count = source.read_at(static_cast<uint32_t>(position), bytes);
    return count ? std::optional(std::string(bytes.begin(), bytes.begin() + *count)) : std::nullopt;
}

TEST(CheckedSource, ReadsWhatItHasHashed)
{
    for (const std::size_t size : {std::size_t{0}, std::size_t{1}, block, small - 1, small,
                                   small + 1, small + block, 3 * small + 5}) {
        const std::string bytes = numbered_bytes(size);
        const auto source = source_of(file_of(bytes), size);
        EXPECT_EQ(source->digest(), sha256_of(bytes)) << size;
        EXPECT_EQ(source->size(), size);
        for (const std::size_t at : {std::size_t{0}, size / 2, size, size + 7, block - 1}) {
            const std::string expected = at < size ? bytes.substr(at, block + 2) : "";
            EXPECT_EQ(read(*source, at, block + 2), expected) << size << " at " << at;
        }
        EXPECT_EQ(read(*source, 0, size + 1), bytes);
        EXPECT_TRUE(source->failure().ok());
    }
}

TEST(CheckedSource, RefusesABlockThatWasChanged)
{
    const std::string bytes = numbered_bytes(3 * small);
    const Descriptor file = file_of(bytes);
    const auto source = source_of(file, bytes.size());
    ASSERT_TRUE(pfsdoc::base::write_all_at(file.get(), "!", 2 * small + 5));
    EXPECT_EQ(read(*source, 0, block), bytes.substr(0, block));
    EXPECT_EQ(read(*source, 2 * small, 1), std::nullopt) << "another byte of its block differs";
    ASSERT_FALSE(source->failure().ok());
    EXPECT_EQ(source->failure().error().what, "was changed while it was read");
    EXPECT_EQ(read(*source, 0, block), std::nullopt) << "it goes on after a failure";
}

TEST(CheckedSource, RefusesABlockThatIsGone)
{
    const std::string bytes = numbered_bytes(3 * small);
    const Descriptor file = file_of(bytes);
    const auto source = source_of(file, bytes.size());
    ASSERT_EQ(::ftruncate(file.get(), small), 0);
    EXPECT_EQ(read(*source, 2 * small, 1), std::nullopt);
    EXPECT_EQ(source->failure().error().what, "was changed while it was read");
}

// What is appended faster than it is read would have no end.
TEST(CheckedSource, RefusesAFileOfAnotherSize)
{
    for (const std::size_t size : {std::size_t{10}, block, small, 2 * small}) {
        const std::string bytes = numbered_bytes(size);
        for (const std::size_t expected : {size - 1, size + 1, size + 2 * block}) {
            const auto source = CheckedSource::read(file_of(bytes), expected);
            ASSERT_FALSE(source.ok()) << size << " for " << expected;
            EXPECT_EQ(source.error().what, "was changed while it was read");
        }
    }
}

std::string sample()
{
    std::ostringstream text;
    text << std::ifstream(SAMPLES_DIRECTORY "/1012-pfs-write-a/letter.doc", std::ios::binary)
                .rdbuf();
    return text.str();
}

struct Converted {
    pfsdoc::batch::Outcome outcome;
    std::string output;
};

Converted convert(const std::string &bytes, const std::function<void(int)> &change)
{
    const Descriptor input = file_of(bytes);
    const Descriptor output(pfsdoc::base::open_scratch_file());
    meanwhile = [&] { change(input.get()); };
    const auto module = pfsdoc::find_module("linked", "");
    pfsdoc::batch::ConversionSettings settings;
    settings.format = pfsdoc::find_format("text");
    settings.module = &module.value();
    pfsdoc::batch::Job job;
    job.size = bytes.size();
    Converted result;
    result.outcome = convert_file(
        job, {Descriptor(::dup(input.get())), Descriptor(::dup(output.get())), Descriptor()},
        settings);
    meanwhile = nullptr;
    result.output.resize(static_cast<std::size_t>(::lseek(output.get(), 0, SEEK_END)));
    pfsdoc::base::read_full_at(output.get(), result.output.data(), result.output.size(), 0);
    return result;
}

// The digest was one version's and the output another's.
TEST(ConvertFile, ConvertsTheBytesThatItHasHashed)
{
    const std::string bytes = sample();
    const Converted calm = convert(bytes, [](int) {});
    ASSERT_EQ(calm.outcome.status, FileStatus::converted);
    EXPECT_EQ(calm.outcome.input_digest, sha256_of(bytes));
    const Converted changed = convert(bytes, [&](int file) {
        EXPECT_TRUE(pfsdoc::base::write_all_at(file, std::string(bytes.size(), 'x'), 0));
    });
    EXPECT_EQ(changed.outcome.status, FileStatus::converted);
    EXPECT_EQ(changed.outcome.input_digest, calm.outcome.input_digest);
    EXPECT_EQ(changed.output, calm.output);
}

TEST(ConvertFile, RecordsNothingOfALargeFileThatWasChanged)
{
    std::string bytes = sample();
    const std::size_t middle = bytes.size() * 2 / 3;
    bytes.insert(middle, 2 * small, 'a');
    const Converted calm = convert(bytes, [](int) {});
    ASSERT_EQ(calm.outcome.status, FileStatus::converted);
    const Converted changed = convert(bytes, [&](int file) {
        EXPECT_TRUE(pfsdoc::base::write_all_at(file, "b", middle + small));
    });
    EXPECT_EQ(changed.outcome.status, FileStatus::unreadable);
    EXPECT_EQ(changed.outcome.what.get(), "was changed while it was read");
    EXPECT_EQ(changed.outcome.has_input_digest, 0U);
    EXPECT_EQ(changed.outcome.has_counts, 0U);
}

} // namespace
