// Packages, looked at byte for byte where OpenDocument demands it, and else by unpacking them.
#include "lib/writers/odf/odf_package.h"

#include "tests/lib/writers/unpacked_package.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace {

using pfsdoc::StringOutput;
using pfsdoc::writers::OdfPackage;
using pfsdoc::writers::Scratch;
using pfsdoc::writers::ScratchFailure;
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
    Scratch scratch;
    OdfPackage package(scratch);
    package.add("content.xml", content);
    StringOutput output;
    package.finish(output);
    return output.text;
}

// By its bytes 30 to 76 the kind of the file is known without unpacking anything.
TEST(OdfPackage, BeginsWithTheMimeTypeAsItIs)
{
    const std::string package = package_of("<a/>");
    EXPECT_EQ(package.substr(0, 4), "PK\x03\x04");
    EXPECT_EQ(package.substr(8, 2), std::string(2, '\0'));  // stored
    EXPECT_EQ(package.substr(28, 2), std::string(2, '\0')); // no extra field
    EXPECT_EQ(package.substr(30, 47), "mimetypeapplication/vnd.oasis.opendocument.text");
}

TEST(OdfPackage, HoldsTheEntriesInOrder)
{
    Scratch scratch;
    OdfPackage package(scratch);
    package.begin("content.xml", 7);
    package.write("<a>");
    package.write("</a>");
    package.add("META-INF/manifest.xml", "<b/>");
    StringOutput output;
    package.finish(output);
    const std::vector<Entry> expected = {
        {"mimetype", "application/vnd.oasis.opendocument.text"},
        {"content.xml", "<a></a>"},
        {"META-INF/manifest.xml", "<b/>"},
    };
    EXPECT_EQ(unpacked(output.text), expected);
}

TEST(OdfPackage, CompressesWhatItHolds)
{
    const std::string content(1'000'000, 'x');
    const std::string package = package_of(content);
    EXPECT_LT(package.size(), 10'000U);
    EXPECT_EQ(unpacked(package).back().content, content);
}

// Of an entry that may have 4 GB the size is kept in an extra field, before the content and in
// the directory: what is written without it others take for damaged.
TEST(OdfPackage, HasRoomForLongSizesWhereTheyMayBeNeeded)
{
    constexpr uint64_t four_gigabytes = uint64_t{1} << 32;
    const std::string long_size("\x01\x00\x10\x00", 4); // its kind, and 16 bytes
    for (const uint64_t most_bytes : {four_gigabytes - 1, four_gigabytes, four_gigabytes - 2}) {
        Scratch scratch;
        OdfPackage package(scratch);
        package.begin("content.xml", most_bytes);
        package.write("<a/>");
        StringOutput output;
        package.finish(output);
        const std::string name = "content.xml";
        const std::size_t behind_name = output.text.find(name) + name.size();
        EXPECT_EQ(output.text.substr(behind_name, long_size.size()) == long_size,
                  most_bytes >= four_gigabytes - 1)
            << most_bytes;
        EXPECT_EQ(unpacked(output.text).back(), (Entry{name, "<a/>"}));
    }
}

// What is larger than a scratch holds in memory is written to a file, and entries are gone
// back to there.
TEST(OdfPackage, HoldsWhatDoesNotFitInMemory)
{
    const std::string content = hard_to_compress(3'000'000);
    Scratch scratch;
    OdfPackage package(scratch);
    package.add("content.xml", content);
    package.add("styles.xml", "<b/>");
    StringOutput output;
    package.finish(output);
    EXPECT_FALSE(scratch.is_in_memory());
    const std::vector<Entry> expected = {
        {"mimetype", "application/vnd.oasis.opendocument.text"},
        {"content.xml", content},
        {"styles.xml", "<b/>"},
    };
    EXPECT_TRUE(unpacked(output.text) == expected); // too long to be shown
}

// minizip gets a short count, and whoever asked for the package the exception.
TEST(OdfPackage, HandsOnWhatTheScratchThrows)
{
    const int closed = ::dup(0);
    ::close(closed);
    Scratch scratch(closed);
    OdfPackage package(scratch);
    const std::string content = hard_to_compress(3'000'000);
    EXPECT_THROW(package.add("content.xml", content), ScratchFailure);
}

TEST(OdfPackage, IsTheSameAtAnyTime)
{
    const std::string package = package_of("<a/>");
    const std::string first_of_january_1980("\0\0\x21\0", 4);
    EXPECT_EQ(package.substr(10, 4), first_of_january_1980);
    EXPECT_EQ(package, package_of("<a/>"));
}

TEST(OdfPackage, CanBeLeftUnfinished)
{
    Scratch scratch;
    OdfPackage package(scratch);
    EXPECT_NO_THROW(package.add("content.xml", "<a>"));
}

} // namespace
