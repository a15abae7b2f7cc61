// Documents that a worker cannot hold in memory while it converts them: what it puts aside,
// where, and what becomes of that.
#include "tests/batch/run/batch_bench.h"

#include <random>
#include <sys/stat.h>

namespace tests {

namespace {

class LargeDocument : public Batch {
protected:
    void SetUp() override
    {
        Batch::SetUp();
        fs::create_directories(directory / "temporary");
        ::setenv("TMPDIR", (directory / "temporary").c_str(), 1);
    }
    void TearDown() override
    {
        ::unsetenv("TMPDIR");
        Batch::TearDown();
    }

    // Of letters at random, which hardly become fewer in a package: 20,000 paragraphs are
    // 3.5 MB of XML, and a package of 800 KB.
    void write_large(const std::string &name, int paragraphs) const
    {
        constexpr std::size_t letters = 60;
        std::minstd_rand random;
        std::string body;
        for (int i = 0; i < paragraphs; ++i) {
            body += "\r";
            for (std::size_t letter = 0; letter < letters; ++letter) {
                body += static_cast<char>('a' + random() % 26);
            }
            body += "\r";
        }
        write(name, document_of(pfsdoc::DocumentKind::write_b, body + '\x0E'));
    }
    // Each paragraph with tab stops of its own, where the bits of its number are: 2000 styles are
    // more than a megabyte of XML.
    void write_rulers(const std::string &name, unsigned paragraphs) const
    {
        constexpr unsigned columns = 16;
        std::string body;
        for (unsigned number = 0; number < paragraphs; ++number) {
            body.append("\f\0\0\0[", 5);
            for (unsigned column = 0; column < columns; ++column) {
                body += (number >> column & 1U) != 0 ? 'T' : '-';
            }
            body += "]\rP\x01word\r";
        }
        write(name, document_of(pfsdoc::DocumentKind::first_choice_3, body + '\x0E'));
    }
    bool left_nothing() const
    {
        return fs::is_empty(directory / "temporary");
    }
};

// With one worker, whose files every document takes over from the one before.
TEST_F(LargeDocument, IsConvertedInTheSandbox)
{
    write_large("in/1", 20'000);
    write_letter("in/2", "Hello");
    write_large("in/3", 6'000);
    write_rulers("in/4", 2'000);
    write_large("in/5", 18'000);
    write_rulers("in/6", 1'900);
    for (const std::string format : {"odt", "fodt"}) {
        SCOPED_TRACE(format);
        const Outcome outcome =
            run({"batch", "in", "-o", format, "-t", format, "-q", "-j", "1", "--sandbox=require"});
        EXPECT_EQ(outcome.exit_code, 0) << outcome.errors;
        for (const std::string name : {"1", "2", "3", "4", "5", "6"}) {
            const std::string path = format + "/in/" + name + "." + format;
            const std::string alone = output_of({"convert", "-t", format, "in/" + name});
            EXPECT_TRUE(content_of(directory / path) == alone) << path; // too long to be shown
        }
        EXPECT_TRUE(left_nothing());
    }
}

// What is put aside is XML, larger than the package that is made of it.
TEST_F(LargeDocument, IsLimitedInWhatItPutsAsideToo)
{
    write_large("in/large", 20'000);
    write_letter("in/letter", "Hello");
    const Outcome outcome =
        run({"batch", "in", "-o", "out", "-t", "odt", "-q", "--max-output", "1MB"});
    EXPECT_EQ(outcome.exit_code, 1);
    EXPECT_EQ(statuses(), "in/large: limit, needs a temporary file larger than the limit\n"
                          "in/letter: converted\n");
    EXPECT_EQ(names(), "in/letter.odt\nmanifest.ndjson\n");
}

TEST_F(LargeDocument, WantsAFolderForTemporaryFilesBeforeTheRun)
{
    ::setenv("TMPDIR", (directory / "missing").c_str(), 1);
    write_letter("in/letter", "Hello");
    const std::vector<std::string> arguments = {"batch", "in", "-o", "out", "-q", "-t"};
    for (const char *format : {"odt", "fodt"}) {
        std::vector<std::string> whole = arguments;
        whole.emplace_back(format);
        expect_failure(run(whole), 7,
                       "pfsdoc: a temporary file cannot be written: No such file or directory; "
                       "name a folder with room for it in the environment variable TMPDIR\n");
        EXPECT_FALSE(fs::exists(directory / "out"));
    }
    std::vector<std::string> whole = arguments;
    whole.emplace_back("text");
    EXPECT_EQ(run(whole).exit_code, 0) << "the format needs none";
}

bool has_ended(pid_t process)
{
    return content_of("/proc/" + std::to_string(process) + "/status").find("State:\tZ") !=
           std::string::npos;
}

// Some lines of the list come late: the worker is ended in between.
TEST_F(LargeDocument, WantsAFolderForTemporaryFilesForEachWorker)
{
    write_letter("in/a", "Hello");
    write_letter("in/b", "Hello");
    ASSERT_EQ(::mkfifo((directory / "list").c_str(), 0600), 0);
    const pid_t child =
        start({"batch", "--files-from", "list", "-o", "out", "-t", "odt", "-q", "-j", "1"});
    std::ofstream list(directory / "list");
    list << "in/a\n" << std::string(5000, '\n') << std::flush;
    wait_for_lines(1);
    wait_until([child] { return first_worker(child) > 1; });
    const pid_t worker = first_worker(child);
    fs::remove(directory / "temporary");
    ::kill(worker, SIGKILL);
    wait_until([worker] { return has_ended(worker); });
    list << "in/b\n";
    list.close();
    const Outcome outcome = outcome_of(child);
    EXPECT_EQ(outcome.exit_code, 7);
    EXPECT_NE(outcome.errors.find("a temporary file cannot be written"), std::string::npos)
        << outcome.errors;
    EXPECT_EQ(statuses(partial), "in/a: converted\n");
    fs::create_directories(directory / "temporary");
}

} // namespace

} // namespace tests
