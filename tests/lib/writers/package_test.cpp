// Packages, compared byte for byte where formats require it, and otherwise by unpacking them.
#include "lib/writers/package.h"

#include "tests/support/unpacked_package.h"

#include <gtest/gtest.h>

#include <random>
#include <stdexcept>
#include <string>
#include <string_view>
#include <sys/mman.h>
#include <vector>

namespace {

using pfsdoc::Output;
using pfsdoc::StringOutput;
using pfsdoc::writers::Package;
using tests::Entry;
using tests::unpacked;

std::string hard_to_compress(std::size_t size)
{
    std::minstd_rand random;
    std::string digits;
    while (digits.size() < size) {
        digits.append(std::to_string(random()));
    }
    return digits;
}

std::string package_of(std::string_view content)
{
    StringOutput output;
    Package package(output);
    package.store("mimetype", "text/plain");
    package.add("content", content);
    package.finish();
    return output.text;
}

// The first bytes identify the type of the file without unpacking anything.
TEST(Package, StoresAnEntryUnchanged)
{
    const std::string package = package_of("<a/>");
    EXPECT_EQ(package.substr(0, 4), "PK\x03\x04");
    EXPECT_EQ(package.substr(6, 4), std::string(4, '\0'));  // no flags, stored
    EXPECT_EQ(package.substr(28, 2), std::string(2, '\0')); // no extra field
    EXPECT_EQ(package.substr(30, 18), "mimetypetext/plain");
}

TEST(Package, HoldsTheEntriesInOrder)
{
    StringOutput output;
    Package package(output);
    package.begin("content.xml", 7);
    package.write("<a>");
    package.write("");
    package.write("</a>");
    package.store("mimetype", "text/plain");
    package.add("META-INF/manifest.xml", "<b/>");
    package.add("empty", "");
    package.finish();
    const std::vector<Entry> expected = {{"content.xml", "<a></a>"},
                                         {"mimetype", "text/plain"},
                                         {"META-INF/manifest.xml", "<b/>"},
                                         {"empty", ""}};
    EXPECT_EQ(unpacked(output.text), expected);
}

TEST(Package, CanBeEmpty)
{
    StringOutput output;
    Package(output).finish();
    EXPECT_EQ(unpacked(output.text), std::vector<Entry>());
}

TEST(Package, CompressesWhatItHolds)
{
    const std::string content(1'000'000, 'x');
    const std::string package = package_of(content);
    EXPECT_LT(package.size(), 10'000U);
    EXPECT_EQ(unpacked(package).back().content, content);
    const std::string digits = hard_to_compress(3'000'000);
    EXPECT_TRUE(unpacked(package_of(digits)).back().content == digits); // too long to be shown
}

TEST(Package, IsTheSameAtAnyTime)
{
    const std::string package = package_of("<a/>");
    const std::string first_of_january_1980("\0\0\x21\0", 4);
    EXPECT_EQ(package.substr(10, 4), first_of_january_1980);
    EXPECT_EQ(package, package_of("<a/>"));
}

TEST(Package, CanBeLeftUnfinished)
{
    StringOutput output;
    Package package(output);
    EXPECT_NO_THROW(package.add("content.xml", "<a>"));
}

TEST(Package, HandsOnWhatTheOutputThrows)
{
    struct Full final : Output {
        void write(std::string_view) override
        {
            throw std::runtime_error("full");
        }
    } output;
    Package package(output);
    EXPECT_THROW(package.store("mimetype", "text/plain"), std::runtime_error);
}

// ------------------------------------------------------------------------ long sizes -----

constexpr uint64_t four_gigabytes = uint64_t{1} << 32U;

// An entry that may reach 4 GB has 64-bit sizes, before the content and after it.
TEST(Package, HasRoomForLongSizesWhereTheyMayBeNeeded)
{
    const std::string long_sizes("\x01\x00\x10\x00", 4); // their kind, and 16 bytes
    for (const uint64_t most_bytes : {uint64_t{4}, uint64_t{1} << 31U, four_gigabytes}) {
        StringOutput output;
        Package package(output);
        package.begin("content.xml", most_bytes);
        package.write("<a/>");
        package.finish();
        const std::string name = "content.xml";
        const std::size_t behind_name = output.text.find(name) + name.size();
        EXPECT_EQ(output.text.substr(behind_name, long_sizes.size()) == long_sizes,
                  most_bytes == four_gigabytes)
            << most_bytes;
        EXPECT_EQ(unpacked(output.text).back(), (Entry{name, "<a/>"}));
    }
}

// Stores the end of what is written.
class Tail final : public Output {
public:
    void write(std::string_view bytes) override
    {
        size += bytes.size();
        kept.append(bytes.substr(bytes.size() - std::min(bytes.size(), most_kept)));
        kept.erase(0, kept.size() - std::min(kept.size(), most_kept));
    }
    uint64_t number(std::size_t at, std::size_t bytes) const
    {
        uint64_t value = 0;
        for (std::size_t i = bytes; i > 0; --i) {
            value = value << 8U | static_cast<uint8_t>(kept.at(at + i - 1));
        }
        return value;
    }

    static constexpr std::size_t most_kept = 4096;
    uint64_t size = 0;
    std::string kept;
};

// Zeros without memory behind them.
class Zeros {
public:
    explicit Zeros(std::size_t size)
        : size_(size), begin_(::mmap(nullptr, size, PROT_READ,
                                     MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0))
    {
    }
    ~Zeros()
    {
        ::munmap(begin_, size_);
    }
    Zeros(const Zeros &) = delete;
    Zeros &operator=(const Zeros &) = delete;

    bool ok() const
    {
        return begin_ != MAP_FAILED;
    }
    std::string_view bytes() const
    {
        return {static_cast<const char *>(begin_), size_};
    }

private:
    std::size_t size_;
    void *begin_;
};

// The first entry's size, the second one's offset and the directory's need 64 bits.
TEST(Package, HoldsMoreThanFourGigabytes)
{
    if constexpr (sizeof(std::size_t) == sizeof(uint64_t)) {
        const Zeros zeros(four_gigabytes + 5);
        ASSERT_TRUE(zeros.ok());
        Tail output;
        Package package(output);
        package.store("zeros", zeros.bytes());
        package.add("b", "<b/>");
        package.finish();

        const std::size_t end = output.kept.size() - 22;
        EXPECT_EQ(output.number(end + 16, 4), 0xFFFFFFFFU);
        const std::size_t locator = end - 20;
        EXPECT_EQ(output.number(locator, 4), 0x07064B50U);
        const uint64_t kept_from = output.size - output.kept.size();
        const std::size_t long_end = output.number(locator + 8, 8) - kept_from;
        EXPECT_EQ(output.number(long_end, 4), 0x06064B50U);
        EXPECT_EQ(long_end + 56, locator);
        EXPECT_EQ(output.number(long_end + 32, 8), 2U); // entries
        const std::size_t first = output.number(long_end + 48, 8) - kept_from;
        EXPECT_EQ(output.number(first, 4), 0x02014B50U);
        EXPECT_EQ(output.number(first + 24, 4), 0xFFFFFFFFU);
        EXPECT_EQ(output.number(first + 46 + 5, 4), 0x00100001U); // both sizes follow
        EXPECT_EQ(output.number(first + 46 + 5 + 4, 8), zeros.bytes().size());
        EXPECT_EQ(output.number(first + 46 + 5 + 12, 8), zeros.bytes().size());
        const std::size_t second = first + 46 + 5 + 20;
        EXPECT_EQ(output.number(second, 4), 0x02014B50U);
        EXPECT_EQ(output.number(second + 42, 4), 0xFFFFFFFFU);
        EXPECT_EQ(output.number(second + 46 + 1, 4), 0x00080001U); // the offset follows
        const uint64_t header = output.number(second + 46 + 1 + 4, 8);
        EXPECT_EQ(output.kept.substr(header - kept_from, 4), "PK\x03\x04");
    }
}

} // namespace
