// What the command needs to write a long document as OpenDocument: hardly more memory than for a
// short one, and temporary files, without which it fails with a message.
//
// A run's peak includes what this program had resident when it started the run, so nothing large is
// held here.
#include "tests/command/command_fixture.h"

#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <string_view>
#include <sys/resource.h>
#include <sys/wait.h>
#include <vector>

namespace tests {

namespace {

class OdfMemory : public Command {
protected:
    void SetUp() override
    {
        Command::SetUp();
        fs::create_directories(directory / "temporary");
        ::setenv("TMPDIR", (directory / "temporary").c_str(), 1);
    }
    void TearDown() override
    {
        ::unsetenv("TMPDIR");
        Command::TearDown();
    }

    // In paragraphs of two lines of 500 bytes, every tenth with a tab.
    void write_document_of(const std::string &name, std::size_t bytes) const
    {
        std::ofstream file(directory / name, std::ios::binary);
        const std::string empty = document_of(pfsdoc::DocumentKind::write_a, "\x0E");
        file << empty.substr(0, empty.size() - 1);
        std::string text;
        while (text.size() < 500) {
            text.append("word ").append(std::to_string(text.size())).append(" ");
        }
        for (std::size_t written = 0, count = 0; written < bytes; ++count) {
            const std::string line = (count % 10 == 0 ? "\t" : "") + text + "\r";
            file << line << line << "\r";
            written += 2 * line.size() + 1;
        }
        file << '\x0E';
    }

    // In paragraphs of one word, each with tab stops of its own: where the bits of its number
    // are.
    void write_rulers(const std::string &name, unsigned count) const
    {
        std::ofstream file(directory / name, std::ios::binary);
        const std::string empty = document_of(pfsdoc::DocumentKind::first_choice_3, "\x0E");
        file << empty.substr(0, empty.size() - 1);
        constexpr std::string_view ruler_mark("\f\0\0\0", 4);
        constexpr std::string_view paragraph = "P\x01word\r";
        for (unsigned number = 0; number < count; ++number) {
            std::string ruler(columns, '-');
            for (unsigned column = 0; column < columns; ++column) {
                ruler[column] = (number >> column & 1U) != 0 ? 'T' : '-';
            }
            file << ruler_mark << '[' << ruler << "]\r" << paragraph;
        }
        file << '\x0E';
    }

    // Kilobytes.
    long peak_of(const std::string &format, const std::string &name) const
    {
        const pid_t child = ::fork();
        if (child == 0) {
            become(directory, {"convert", "-t", format, "-o", "written", name}, {});
        }
        int status = 0;
        rusage usage{};
        EXPECT_EQ(::wait4(child, &status, 0, &usage), child);
        EXPECT_EQ(status, 0) << content_of(directory / "err.captured");
        return usage.ru_maxrss;
    }
    bool left_nothing() const
    {
        return fs::is_empty(directory / "temporary");
    }
    void expect_the_same_peak(const std::string &small, const std::string &large)
    {
        for (const char *format : {"odt", "fodt"}) {
            const long small_peak = peak_of(format, small);
            const long large_peak = peak_of(format, large);
            EXPECT_LE(large_peak, most_kilobytes);
            EXPECT_LT(4 * large_peak, 5 * small_peak)
                << format << ": " << small_peak << " KB and " << large_peak << " KB";
            EXPECT_GT(fs::file_size(directory / "written"), 100U * 1024);
            EXPECT_TRUE(left_nothing());
        }
    }

    static constexpr unsigned columns = 20;
    static constexpr long most_kilobytes = 8 * 1024;
};

// A sanitizer keeps freed memory for a while, and its shadow.
#ifndef PFSDOC_IS_SANITIZED
TEST_F(OdfMemory, IsBoundedWhateverTheDocument)
{
    write_document_of("short", 1'000'000);
    write_document_of("long", 20'000'000);
    expect_the_same_peak("short", "long");
}

TEST_F(OdfMemory, IsBoundedWhereEachParagraphHasAStyleOfItsOwn)
{
    write_rulers("short", 2'000);
    write_rulers("long", 20'000);
    expect_the_same_peak("short", "long");
}
#endif

TEST_F(OdfMemory, NeedsNoTemporaryFileForALetter)
{
    ::setenv("TMPDIR", (directory / "missing").c_str(), 1);
    write_document_of("letter", 100'000);
    for (const char *format : {"odt", "fodt"}) {
        EXPECT_GT(output_of({"convert", "-t", format, "letter"}).size(), 1000U);
    }
}

// Neither the output nor its temporary file.
TEST_F(OdfMemory, LeavesNothingWhereNoTemporaryFileCanBeMade)
{
    ::setenv("TMPDIR", (directory / "missing").c_str(), 1);
    write_document_of("long", 2'000'000);
    const std::string words =
        "pfsdoc: long: a temporary file cannot be written: No such file or directory; "
        "name a folder with room for it in the environment variable TMPDIR\n";
    for (const char *format : {"odt", "fodt"}) {
        expect_failure(run({"convert", "-t", format, "-o", "written", "long"}), 7, words);
        for (const auto &entry : fs::directory_iterator(directory)) {
            EXPECT_FALSE(entry.path().filename().string().starts_with(".pfsdoc")) << entry.path();
        }
        EXPECT_FALSE(fs::exists(directory / "written"));
        expect_failure(run({"convert", "-t", format, "long"}), 7, words);
        EXPECT_EQ(content_of(directory / "out.captured"), "");
    }
}

TEST_F(OdfMemory, LeavesAnOutputThatIsThereAsItWas)
{
    ::setenv("TMPDIR", (directory / "missing").c_str(), 1);
    write_document_of("long", 2'000'000);
    write("written", "before");
    EXPECT_EQ(run({"convert", "-t", "odt", "-o", "written", "long"}).exit_code, 7);
    EXPECT_EQ(content_of(directory / "written"), "before");
}

} // namespace

} // namespace tests
