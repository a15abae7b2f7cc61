// Where the output of pfsdoc goes: what it never replaces, how it replaces the rest, and what it
// does when nobody reads it.
#include "tests/command/command_fixture.h"

#include <csignal>

namespace {

using namespace tests;

class OutputOfCommand : public Command {
protected:
    void SetUp() override
    {
        Command::SetUp();
        letter = content_of(directory / "a.pfs");
    }

    // That the run fails as one whose output must not be written, and that the file stays.
    void expect_kept(const std::vector<std::string> &arguments, const std::string &name,
                     const std::string &what, const Streams &streams = {}) const
    {
        const std::string before = content_of(directory / name);
        const Outcome outcome = run(arguments, streams);
        expect_failure(outcome, 2, "pfsdoc: ");
        EXPECT_NE(outcome.errors.find(what), std::string::npos) << outcome.errors;
        EXPECT_TRUE(content_of(directory / name) == before) << name;
    }

    // The signal that ended a run whose standard output is a pipe without a reader; 0 for none.
    int signal_without_reader(const std::vector<std::string> &arguments,
                              void (*inherited)(int)) const
    {
        std::array<int, 2> ends{};
        EXPECT_EQ(::pipe(ends.data()), 0);
        ::close(ends[0]);
        const pid_t child = ::fork();
        if (child == 0) {
            std::ignore = std::signal(SIGPIPE, inherited);
            become(directory, arguments, {.output = "/dev/fd/" + std::to_string(ends[1])});
        }
        ::close(ends[1]);
        int status = 0;
        EXPECT_EQ(::waitpid(child, &status, 0), child);
        return WIFSIGNALED(status) ? WTERMSIG(status) : 0;
    }
    std::string errors() const
    {
        return content_of(directory / "err.captured");
    }

    std::string letter;
};

// One kind of document for each command that writes one.
TEST_F(OutputOfCommand, NeverTakesThePlaceOfADocument)
{
    for (const KindExample &example : kind_examples()) {
        write("B.DOC", document_of(example.kind, bytes(example.body)));
        const std::string kind(display_name(example.kind));
        for (const char *command : {"text", "explain", "trace"}) {
            expect_kept({command, "a.pfs", "-o", "B.DOC"}, "B.DOC", "is a document (" + kind + ")");
        }
        expect_kept({"convert", "-t", "html", "a.pfs", "-o", "B.DOC"}, "B.DOC", "is a document");
    }
}

TEST_F(OutputOfCommand, NeverTakesThePlaceOfARelative)
{
    write("A.FOL", blank_document(512, {{9, "GERBILDB"}}));
    expect_kept({"text", "a.pfs", "-o", "A.FOL"}, "A.FOL", "is a First Choice database");
    write("B.PFS", blank_document(1024, {{641, "TYPE 2"}, {649, "7"}}));
    expect_kept({"text", "a.pfs", "-o", "B.PFS"}, "B.PFS", "is a file of PFS: WRITE");
}

TEST_F(OutputOfCommand, NeverTakesThePlaceOfADiskette)
{
    std::string image(std::size_t{360} << 10, '\0');
    image.replace(512, 3, "\xFD\xFF\xFF");
    write("disk.img", image);
    expect_kept({"text", "a.pfs", "-o", "disk.img"}, "disk.img", "is the image of a diskette");
}

TEST_F(OutputOfCommand, NeverTakesThePlaceOfAnInputByWhateverWay)
{
    fs::create_hard_link(directory / "a.pfs", directory / "hard");
    fs::create_symlink("a.pfs", directory / "soft");
    for (const char *name : {"a.pfs", "./a.pfs", "hard", "soft"}) {
        expect_kept({"text", "a.pfs", "-o", name}, "a.pfs", "is an input");
        for (const char *input : {"-", "/dev/stdin", "/dev/fd/0"}) {
            expect_kept({"convert", "-t", "text", input, "-o", name}, "a.pfs", "is an input",
                        {.input = "a.pfs"});
        }
    }
    EXPECT_TRUE(fs::is_symlink(directory / "soft"));
}

// A shell opens what is redirected: nothing but the descriptor shows what it is.
TEST_F(OutputOfCommand, IsNotAppendedToADocument)
{
    write("b.pfs", letter);
    for (const std::string name : {"a.pfs", "b.pfs"}) {
        const int opened = ::open((directory / name).c_str(), O_WRONLY | O_APPEND | O_CLOEXEC);
        ASSERT_GE(opened, 0);
        const Streams streams{.output = "/dev/fd/" + std::to_string(opened)};
        for (const std::vector<std::string> &arguments : std::vector<std::vector<std::string>>{
                 {"text", "a.pfs"}, {"text", "a.pfs", "-o", "/dev/stdout"}}) {
            const Outcome outcome = run(arguments, streams);
            EXPECT_EQ(outcome.exit_code, 2) << outcome.errors;
            EXPECT_TRUE(content_of(directory / name) == letter);
        }
        ::close(opened);
    }
}

TEST_F(OutputOfCommand, ReplacesAnyOtherFileWhole)
{
    write("notes", std::string(100000, 'x'));
    EXPECT_EQ(output_of({"text", "a.pfs", "-o", "notes"}), "");
    EXPECT_EQ(content_of(directory / "notes"), output_of({"text", "a.pfs"}));
    write("empty", "");
    EXPECT_EQ(output_of({"text", "a.pfs", "-o", "empty"}), "");
}

TEST_F(OutputOfCommand, KeepsEveryFileWithNoClobber)
{
    write("notes", "kept");
    const Outcome outcome = run({"text", "--no-clobber", "a.pfs", "-o", "notes"});
    expect_failure(outcome, 7, "pfsdoc: a.pfs: the output notes exists already; ");
    EXPECT_EQ(content_of(directory / "notes"), "kept");
    EXPECT_EQ(output_of({"text", "--no-clobber", "a.pfs", "-o", "new"}), "");
    EXPECT_EQ(output_of({"text", "--no-clobber", "a.pfs", "-o", "/dev/null"}), "");
}

// Whoever may read everything does so as somebody who may not.
TEST_F(OutputOfCommand, DoesNotReplaceWhatItMayNotLookAt)
{
    constexpr uid_t nobody = 65534;
    constexpr int unreachable = 99;
    write("secret", "kept");
    fs::permissions(directory, fs::perms::all);
    fs::permissions(directory / "secret", fs::perms::none);
    const pid_t child = ::fork();
    if (child == 0) {
        const bool is_nobody = ::geteuid() != 0 || (::setgid(nobody) == 0 && ::setuid(nobody) == 0);
        if (!is_nobody || ::access(PFSDOC_PROGRAM, X_OK) != 0) {
            ::_exit(unreachable);
        }
        become(directory, {"text", "a.pfs", "-o", "secret"}, {});
    }
    const Outcome outcome = outcome_of(child);
    if (outcome.exit_code == unreachable) {
        GTEST_SKIP() << "nobody may start the program";
    }
    expect_failure(outcome, 7,
                   "pfsdoc: a.pfs: the output secret cannot be looked at before it is replaced: ");
    fs::permissions(directory / "secret", fs::perms::owner_all);
    EXPECT_EQ(content_of(directory / "secret"), "kept");
}

TEST_F(OutputOfCommand, RefusesALinkThatLeadsNowhere)
{
    fs::create_symlink("none", directory / "link");
    expect_failure(run({"text", "a.pfs", "-o", "link"}), 7,
                   "pfsdoc: a.pfs: the output link is a symbolic link that leads nowhere; ");
    EXPECT_TRUE(fs::is_symlink(directory / "link"));
    EXPECT_FALSE(fs::exists(directory / "none"));
}

// As other filters end.
TEST_F(OutputOfCommand, EndsInSilenceWhenNobodyReadsIt)
{
    for (const std::vector<std::string> &arguments :
         std::vector<std::vector<std::string>>{{"text", "a.pfs"},
                                               {"convert", "-t", "html", "a.pfs"},
                                               {"trace", "a.pfs"},
                                               {"explain", "a.pfs"},
                                               {"identify", "a.pfs"},
                                               {"text", "a.pfs", "-o", "/dev/stdout"},
                                               {"--help"}}) {
        EXPECT_EQ(signal_without_reader(arguments, SIG_DFL), SIGPIPE) << arguments.front();
        EXPECT_EQ(errors(), "");
    }
}

// Whoever ignores the signal wants to be told.
TEST_F(OutputOfCommand, SaysThatNobodyReadsItWhereTheSignalIsIgnored)
{
    EXPECT_EQ(signal_without_reader({"text", "a.pfs"}, SIG_IGN), 0);
    EXPECT_EQ(errors().substr(0, 60),
              "pfsdoc: a.pfs: the output cannot be written: Broken pipe; le");
}

} // namespace
