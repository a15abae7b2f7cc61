// pfsdoc convert as a program: formats, their options, limits, and what happens to the output if
// something ends the run.
#include "tests/command/command_fixture.h"

#include "pfsdoc/writer.h"

#include <csignal>
#include <thread>

namespace {

using namespace tests;

class Convert : public Command {
protected:
    // Waits for a file to appear, as a program writes it.
    bool appears(const std::string &prefix) const
    {
        for (int tenth = 0; tenth < 300; ++tenth) {
            for (const auto &entry : fs::directory_iterator(directory)) {
                if (entry.path().filename().string().starts_with(prefix)) {
                    return true;
                }
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
        return false;
    }
    // The outcome of a run that gets a signal at the right time.
    template <typename Time>
    Outcome interrupted(const std::vector<std::string> &arguments, int signal, Time is_time) const
    {
        const pid_t child = ::fork();
        if (child == 0) {
            become(directory, arguments, {});
        }
        EXPECT_TRUE(is_time());
        ::kill(child, signal);
        return outcome_of(child);
    }
    std::vector<std::string> names() const
    {
        std::vector<std::string> names;
        for (const auto &entry : fs::directory_iterator(directory)) {
            names.push_back(entry.path().filename().string());
        }
        std::sort(names.begin(), names.end());
        return names;
    }
};

TEST_F(Convert, WritesTheFormatThatIsAskedFor)
{
    EXPECT_EQ(output_of({"convert", "-t", "text", "a.pfs"}), output_of({"text", "a.pfs"}));
    EXPECT_EQ(output_of({"convert", "-t", "trace", "a.pfs"}), output_of({"trace", "a.pfs"}));
    EXPECT_EQ(output_of({"convert", "-t", "trace", "--fold", "--offsets", "a.pfs"}),
              output_of({"trace", "--fold", "--offsets", "a.pfs"}));
}

TEST_F(Convert, TakesTheFormatFromTheOutputsName)
{
    output_of({"convert", "a.pfs", "-o", "letter.txt"});
    EXPECT_EQ(content_of(directory / "letter.txt"), output_of({"text", "a.pfs"}));
    output_of({"convert", "a.pfs", "-o", "letter.trace"});
    EXPECT_EQ(content_of(directory / "letter.trace"), output_of({"trace", "a.pfs"}));
    output_of({"convert", "-t", "trace", "a.pfs", "-o", "letter.txt"});
    EXPECT_EQ(content_of(directory / "letter.txt"), output_of({"trace", "a.pfs"}));
}

TEST_F(Convert, RefusesFormatsThatThereAreNot)
{
    expect_failure(run({"convert", "a.pfs"}), 2, "pfsdoc: the output format is missing");
    expect_failure(run({"convert", "-t", "wordstar", "a.pfs"}), 2,
                   "pfsdoc: there is no output format \"wordstar\"");
    expect_failure(run({"convert", "a.pfs", "-o", "letter.doc"}), 2,
                   "pfsdoc: there is no output format \"doc\"");
    EXPECT_FALSE(fs::exists(directory / "letter.doc"));
}

TEST_F(Convert, TakesFormatsAsTheyAreTyped)
{
    const std::string text = output_of({"text", "a.pfs"});
    const std::string page = output_of({"convert", "-t", "html", "a.pfs"});
    for (const char *format : {"txt", "TEXT", "Text"}) {
        EXPECT_EQ(output_of({"convert", "-t", format, "a.pfs"}), text) << format;
    }
    EXPECT_EQ(output_of({"convert", "-t", "md", "a.pfs"}),
              output_of({"convert", "-t", "markdown", "a.pfs"}));
    for (const char *name : {"x.htm", "x.HTML", "X.Htm"}) {
        EXPECT_EQ(output_of({"convert", "a.pfs", "-o", name}), "");
        EXPECT_EQ(content_of(directory / name), page) << name;
    }
    fs::create_directory(directory / "v1.2");
    expect_failure(run({"convert", "a.pfs", "-o", "v1.2/letter"}), 2,
                   "pfsdoc: the output format is missing");
}

TEST_F(Convert, ShowsTheWayToOtherFormats)
{
    for (const std::vector<std::string> &arguments : std::vector<std::vector<std::string>>{
             {"convert", "-t", "docx", "a.pfs"}, {"convert", "a.pfs", "-o", "letter.docx"}}) {
        expect_failure(run(arguments), 2,
                       "pfsdoc: there is no output format \"docx\"; convert to odt, open that in a "
                       "word processor");
    }
    EXPECT_FALSE(fs::exists(directory / "letter.docx"));
}

TEST_F(Convert, WritesIntoAFolder)
{
    const std::string page = output_of({"convert", "-t", "html", "a.pfs"});
    fs::create_directory(directory / "there");
    write("b.pfs", content_of(directory / "a.pfs"));
    for (const char *folder : {"there", "there/", "made/"}) {
        EXPECT_EQ(output_of({"convert", "-t", "html", "a.pfs", "b.pfs", "-o", folder}), "");
        EXPECT_EQ(content_of(directory / folder / "a.pfs.html"), page) << folder;
        EXPECT_TRUE(fs::exists(directory / folder / "b.pfs.html")) << folder;
    }
    EXPECT_EQ(output_of({"text", "a.pfs", "-o", "there"}), "");
    EXPECT_EQ(content_of(directory / "there" / "a.pfs.txt"), output_of({"text", "a.pfs"}));
    expect_failure(run({"convert", "a.pfs", "-o", "there"}), 2,
                   "pfsdoc: the output format is missing");
    expect_failure(run({"text", "-", "-o", "there"}, {.input = "a.pfs"}), 2,
                   "pfsdoc: standard input has no name");
    expect_failure(run({"text", "a.pfs", "-o", "none/made/"}), 7, "pfsdoc: the output none/made/ ");
}

TEST_F(Convert, GoesOnAfterADocumentThatFails)
{
    write("b.pfs", content_of(directory / "a.pfs"));
    write("junk", "junk");
    const Outcome outcome =
        run({"convert", "-t", "text", "a.pfs", "junk", "none", "b.pfs", "-o", "out/"});
    EXPECT_EQ(outcome.exit_code, 1);
    EXPECT_EQ(std::count(outcome.errors.begin(), outcome.errors.end(), '\n'), 2);
    EXPECT_NE(outcome.errors.find("pfsdoc: junk: is not a supported document"), std::string::npos);
    EXPECT_NE(outcome.errors.find("pfsdoc: none: cannot be read"), std::string::npos);
    EXPECT_TRUE(fs::exists(directory / "out" / "a.pfs.txt"));
    EXPECT_TRUE(fs::exists(directory / "out" / "b.pfs.txt"));
    EXPECT_FALSE(fs::exists(directory / "out" / "junk.txt"));
}

TEST_F(Convert, WritesNothingWhereTwoDocumentsHaveOneOutput)
{
    fs::create_directory(directory / "x");
    write("x/a.pfs", content_of(directory / "a.pfs"));
    expect_failure(run({"convert", "-t", "text", "a.pfs", "x/a.pfs", "-o", "out/"}), 2,
                   "pfsdoc: a.pfs and x/a.pfs have the same output out/a.pfs.txt; ");
    EXPECT_FALSE(fs::exists(directory / "out"));
}

// As on a file system that does not tell A.PFS.txt and a.pfs.txt apart.
TEST_F(Convert, KeepsWhatItWroteForAnotherDocument)
{
    write("b.pfs", content_of(directory / "a.pfs"));
    fs::create_directory(directory / "out");
    fs::create_symlink("a.pfs.txt", directory / "out" / "b.pfs.txt");
    const Outcome outcome = run({"text", "a.pfs", "b.pfs", "-o", "out"});
    expect_failure(outcome, 1,
                   "pfsdoc: b.pfs: the output out/b.pfs.txt is the output of another document");
    EXPECT_EQ(content_of(directory / "out" / "a.pfs.txt"), output_of({"text", "a.pfs"}));
}

TEST_F(Convert, SaysWhereSeveralDocumentsCanGo)
{
    write("b.pfs", content_of(directory / "a.pfs"));
    for (const std::vector<std::string> &arguments : std::vector<std::vector<std::string>>{
             {"convert", "a.pfs", "b.pfs"},
             {"convert", "-t", "html", "a.pfs", "b.pfs", "-o", "one.html"},
             {"text", "a.pfs", "b.pfs", "-o", "one.txt"}}) {
        const Outcome outcome = run(arguments);
        expect_failure(outcome, 2, "pfsdoc: several documents need a folder ");
        EXPECT_NE(outcome.errors.find("-o FOLDER/, or see pfsdoc batch --help"), std::string::npos)
            << outcome.errors;
    }
    expect_failure(run({"convert", "a.pfs", "letter.odt"}), 2,
                   "pfsdoc: several documents need a folder for their outputs; did you mean -o "
                   "letter.odt?");
}

TEST_F(Convert, JoinsTheTextOfSeveralDocuments)
{
    const std::string text = output_of({"text", "a.pfs"});
    EXPECT_EQ(output_of({"text", "a.pfs", "a.pfs"}), text + "\f" + text);
    const std::string plain = output_of({"text", "--no-page-breaks", "a.pfs"});
    EXPECT_EQ(output_of({"text", "--no-page-breaks", "a.pfs", "a.pfs"}), plain + "\n" + plain);
    const Outcome outcome = run({"text", "none", "a.pfs"});
    expect_failure(outcome, 1, "pfsdoc: none: cannot be read");
    EXPECT_EQ(outcome.output, text);
}

TEST_F(Convert, KeepsBinaryFormatsFromTerminals)
{
    if (pfsdoc::find_format("odt") == nullptr) {
        GTEST_SKIP() << "the only one is missing here";
    }
    const int terminal = ::posix_openpt(O_RDWR | O_NOCTTY);
    ASSERT_GE(terminal, 0);
    ASSERT_EQ(::grantpt(terminal), 0);
    ASSERT_EQ(::unlockpt(terminal), 0);
    const Streams on_terminal{.output = ::ptsname(terminal)};
    expect_failure(run({"convert", "-t", "odt", "a.pfs"}, on_terminal), 2,
                   "pfsdoc: odt cannot be shown on a terminal");
    expect_failure(run({"convert", "-t", "odt", "a.pfs", "-o", "-"}, on_terminal), 2,
                   "pfsdoc: odt cannot be shown on a terminal");
    EXPECT_EQ(run({"convert", "-t", "text", "a.pfs"}, on_terminal).exit_code, 0);
    ::close(terminal);
}

TEST_F(Convert, RefusesOptionsThatTheFormatDoesNotRead)
{
    expect_failure(run({"convert", "-t", "trace", "--wrap", "60", "a.pfs"}), 2,
                   "pfsdoc: --wrap does not apply to trace");
    expect_failure(run({"convert", "-t", "text", "--fold", "a.pfs"}), 2,
                   "pfsdoc: --fold does not apply to text");
    expect_failure(run({"convert", "-t", "text", "--wrap", "60", "--raw-lines", "a.pfs"}), 2,
                   "pfsdoc: ");
    expect_failure(run({"convert", "-t", "text", "--wrap", "many", "a.pfs"}), 2, "pfsdoc: ");
    expect_failure(run({"convert", "-t", "text", "--wrap", "1001", "a.pfs"}), 2, "pfsdoc: ");
    EXPECT_EQ(run({"convert", "-t", "text", "--wrap", "1000", "a.pfs"}).exit_code, 0);
}

// "lines" is a part of "raw_lines", which text reads.
TEST_F(Convert, TakesNoOptionForAnotherWhoseNameHasItInIt)
{
    expect_failure(run({"convert", "-t", "text", "--lines", "a.pfs"}), 2,
                   "pfsdoc: --lines does not apply to text");
}

TEST_F(Convert, ListsEveryFormatInItsHelp)
{
    std::istringstream words(output_of({"convert", "--help"}));
    std::string help; // as if its lines were not filled
    for (std::string word; words >> word;) {
        help += word + " ";
    }
    for (const pfsdoc::Format *format : pfsdoc::formats()) {
        EXPECT_NE(help.find(format->name), std::string::npos) << format->name;
        EXPECT_NE(help.find(format->description), std::string::npos) << format->name;
    }
}

TEST_F(Convert, WrapsAtTheGivenColumn)
{
    EXPECT_EQ(output_of({"text", "--wrap", "6", "--no-page-breaks", "a.pfs"}),
              "  Hello\nmore\nlast\n");
    EXPECT_EQ(output_of({"text", "--wrap", "0", "--no-page-breaks", "a.pfs"}),
              "Hello\nmore\nlast\n");
}

// Margins 0 and 20: the lines are joined, and filled anew unless they are to stay.
TEST_F(Convert, KeepsTheLinesOfTheFileWhenAsked)
{
    write("lines.pfs", write_document("TYPE 2", '2',
                                      bytes("0D 'a *C*' 0D 'sixteen letters.' 0D 'wonderful and' 0D"
                                            "'*JOIN B*' 0D 'as before' 0D 0E"),
                                      {write_margins(0, 20)}));
    EXPECT_EQ(output_of({"text", "--raw-lines", "lines.pfs"}),
              "a\nsixteen letters.\nwonderful and\nas before\n");
    EXPECT_EQ(output_of({"text", "--raw-lines", "--commands", "lines.pfs"}),
              "a *C*\nsixteen letters.\nwonderful and\n*JOIN B*\nas before\n");
}

TEST_F(Convert, ReadsTheGivenCharacterSet)
{
    write("choice.doc", choice_document('2', "top", {choice_header_line(0, "Caf\x82 \xB5")}));
    EXPECT_EQ(run({"text", "choice.doc"}).output.substr(0, 9), "Café ╡");
    EXPECT_EQ(run({"text", "--charset", "850", "choice.doc"}).output.substr(0, 8), "Café Á");
    expect_failure(run({"text", "--charset", "klingon", "a.pfs"}), 2,
                   "pfsdoc: the character set \"klingon\" is not known");
    expect_failure(run({"text", "--charset", "UTF-8", "a.pfs"}), 2,
                   "pfsdoc: the character set \"UTF-8\" does not extend ASCII");
    EXPECT_EQ(output_of({"text", "--charset", "850", "a.pfs"}), output_of({"text", "a.pfs"}));
}

TEST_F(Convert, ReportsWhatTheFormatCannotExpress)
{
    write("bold.pfs", write_document("TYPE 2", '2', bytes("0D 'so ' C2 02 'old' 0D 0E")));
    const Outcome outcome = run({"convert", "-t", "text", "--report", "bold.pfs"});
    EXPECT_EQ(outcome.exit_code, 0);
    EXPECT_EQ(outcome.errors,
              "pfsdoc: bold.pfs: not in the output: bold text (1, first at byte 1029)\n");
    EXPECT_EQ(run({"convert", "-t", "text", "bold.pfs"}).errors, "");
}

// The older letter ends in an end mark of its own.
TEST_F(Convert, ReportsWhatFollowsTheEndMark)
{
    const std::string letter = write_document("TYPE 2", '2', bytes("0D 'new' 0D 0E"));
    write("both.pfs", letter + std::string(3, '\0') + "an older letter\r\x0E");
    write("padded.pfs", letter + std::string(100, '\x1A'));
    const Outcome outcome = run({"text", "--report", "both.pfs"});
    EXPECT_EQ(outcome.exit_code, 0);
    EXPECT_EQ(outcome.errors, "pfsdoc: both.pfs: not in the output: bytes behind the end mark "
                              "(17, first at byte 1034)\n");
    EXPECT_EQ(run({"text", "both.pfs"}).errors, "");
    EXPECT_EQ(run({"text", "--report", "padded.pfs"}).errors, "");
    const std::string json = output_of({"convert", "-t", "json", "both.pfs"});
    EXPECT_NE(json.find(R"("after_end":{"offset":1034,"bytes":17}})"), std::string::npos) << json;
}

TEST_F(Convert, EndsAtTheLimitOfTheOutput)
{
    const Outcome outcome = run({"text", "--max-output", "10", "a.pfs"});
    expect_failure(outcome, 6, "pfsdoc: a.pfs: would give more output than the 10 bytes allowed");
    EXPECT_EQ(outcome.output, output_of({"text", "a.pfs"}).substr(0, 10));
    expect_failure(run({"text", "--max-output", "10", "a.pfs", "-o", "new"}), 6, "pfsdoc: a.pfs: ");
    EXPECT_FALSE(fs::exists(directory / "new"));
    for (const char *size : {"-3", "ten", "1x", "", "99999999999999999999"}) {
        expect_failure(run({"text", "--max-output", size, "a.pfs"}), 2, "pfsdoc: ");
    }
    EXPECT_EQ(run({"text", "--max-output", "0.01kB", "a.pfs"}).exit_code, 2);
    const std::string whole = output_of({"text", "a.pfs"});
    EXPECT_EQ(output_of({"text", "--max-output", "1kB", "a.pfs"}), whole);
    EXPECT_EQ(output_of({"text", "--max-output", std::to_string(whole.size()), "a.pfs"}), whole);
}

TEST_F(Convert, ReportsWhereATruncatedDocumentEnds)
{
    write("cut.pfs", write_document("TYPE 2", '2', "\rOne\rTw"));
    const Outcome outcome = run({"text", "cut.pfs"});
    expect_failure(outcome, 5, "pfsdoc: cut.pfs: is truncated: ");
    EXPECT_NE(outcome.errors.find("(at byte "), std::string::npos) << outcome.errors;
}

// A trace of this takes seconds, and its file is there from the first moment.
TEST_F(Convert, LeavesNothingBehindWhenInterrupted)
{
    std::string body;
    while (body.size() < (std::size_t{8} << 20)) {
        body += "\rIt is a long letter";
    }
    write("long.pfs", write_document("TYPE 2", '2', body + "\x0E"));
    const auto before = names();
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        const Outcome outcome = interrupted({"trace", "long.pfs", "-o", "new"}, signal,
                                            [this] { return appears(".pfsdoc-"); });
        EXPECT_EQ(outcome.exit_code, 130);
        EXPECT_EQ(outcome.errors, "pfsdoc: interrupted\n");
        fs::remove(directory / "out.captured");
        fs::remove(directory / "err.captured");
        EXPECT_EQ(names(), before);
    }
}

TEST_F(Convert, IsInterruptedWhileItWaitsForItsInput)
{
    ASSERT_EQ(::mkfifo((directory / "silent").c_str(), 0600), 0);
    const int silent = ::open((directory / "silent").c_str(), O_RDWR);
    const Outcome outcome = interrupted({"text", "silent"}, SIGINT, [] {
        std::this_thread::sleep_for(std::chrono::milliseconds(200));
        return true;
    });
    ::close(silent);
    EXPECT_EQ(outcome.exit_code, 130);
    EXPECT_EQ(outcome.output, "");
}

} // namespace
