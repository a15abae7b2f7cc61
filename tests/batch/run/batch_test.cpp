// pfsdoc batch from the outside: what the folder and the manifest hold afterwards.
#include "tests/batch/run/batch_bench.h"

#include <sys/file.h>
#include <sys/resource.h>
#include <sys/stat.h>

namespace tests {

namespace {

TEST_F(Batch, GivesEachFileItsStatus)
{
    write_letter("in/a/letter", "Hello");
    const std::string whole = content_of(directory / "in/a/letter");
    write("in/cut", whole.substr(0, whole.size() - 2));
    write("in/other", "no document");
    const Outcome outcome = run({"batch", "in", "none", "-o", "out", "-t", "text"});
    EXPECT_EQ(outcome.exit_code, 1);
    EXPECT_EQ(outcome.output, "");
    EXPECT_NE(outcome.errors.find("4 files: 1 converted, 2 failed (1 damaged, 1 unreadable), 1 "
                                  "ignored (1 not_a_document); see out/manifest.ndjson\n"),
              std::string::npos)
        << outcome.errors;
    EXPECT_EQ(statuses(), "in/a/letter: converted\n"
                          "in/cut: damaged, is truncated: the file ends before the document does\n"
                          "in/other: not_a_document, is not a supported document\n"
                          "none: unreadable, cannot be read: No such file or directory\n");
    EXPECT_EQ(names(), "in/a/letter.txt\nin/cut.txt\nmanifest.ndjson\n");
    EXPECT_EQ(content_of(directory / "out/in/a/letter.txt"), output_of({"text", "in/a/letter"}));
    EXPECT_EQ(content_of(directory / "out/in/cut.txt"),
              content_of(directory / "out/in/a/letter.txt"));
}

TEST_F(Batch, WritesALineOfJsonForAFile)
{
    run({"batch", "a.pfs", "-o", "out", "-t", "text", "--no-headers", "-q"});
    const std::string output = content_of(directory / "out/a.pfs.txt");
    const std::string input = content_of(directory / "a.pfs");
    const auto json = nlohmann::ordered_json::parse(manifest());
    const std::string input_sum = json.at("sha256");
    const std::string output_sum = json.at("output").at("sha256");
    EXPECT_EQ(
        manifest(),
        R"({"name":"a.pfs","source":"a.pfs","size":)" + std::to_string(input.size()) +
            R"(,"sha256":")" + input_sum +
            R"(","kind":"PFS: WRITE B","file_id":1013,"puid":"fmt/1414","confidence":"certain",)"
            R"("basis":"\"TYPE 2\" at 641, variant \"2\" at 649","status":"converted",)"
            R"("error":null,"counts":{"paragraphs":3,"characters":14,"page_breaks":1,)"
            R"("header_lines":0,"footer_lines":0},"losses":{},"after_end":null,"output":{"name":"a.pfs.txt","size":)" +
            std::to_string(output.size()) + R"(,"sha256":")" + output_sum +
            R"("},"format":"text","options":"--no-headers","module":null,"pfsdoc":")" PFSDOC_VERSION
            "\"}\n");
    write("sums", input_sum + "  a.pfs\n" + output_sum + "  out/a.pfs.txt\n");
    const std::string check = "cd '" + directory.string() + "' && sha256sum --status -c sums";
    EXPECT_EQ(std::system(check.c_str()), 0);
}

TEST_F(Batch, RecordsWhatFollowsTheEndMark)
{
    const std::string letter = content_of(directory / "a.pfs");
    write("b.pfs", letter + "of an older letter\r\x0E");
    for (const char *format : {"text", "trace"}) {
        run({"batch", "a.pfs", "b.pfs", "-o", format, "-t", format, "-q"});
        const auto lines = lines_of(manifest(std::string(format) + "/manifest.ndjson"));
        ASSERT_EQ(lines.size(), 2U);
        EXPECT_TRUE(nlohmann::json::parse(lines[0]).at("after_end").is_null());
        EXPECT_EQ(nlohmann::json::parse(lines[1]).at("after_end"),
                  nlohmann::json({{"offset", letter.size()}, {"bytes", 20}}));
    }
}

// They claimed an output without a byte, which was not there.
TEST_F(Batch, RecordsNoOutputOfAnArchiveThatBreaksOff)
{
    write_letter("in/a", std::string(20000, 'x'));
    write_letter("in/b", std::string(20000, 'y'));
    const std::string make =
        "cd '" + directory.string() +
        "' && tar cf t.tar in/a in/b && head -c 30000 t.tar > torn.tar && rm t.tar";
    ASSERT_EQ(std::system(make.c_str()), 0);
    for (int time = 0; time < 2; ++time) {
        EXPECT_EQ(run({"batch", "torn.tar", "-o", "out", "-t", "text"}).exit_code, 1);
        EXPECT_EQ(statuses(),
                  "torn.tar/in/a: converted\n"
                  "torn.tar/in/b: unreadable, is damaged inside its archive\n"
                  "torn.tar: unreadable, is a damaged archive, and breaks off behind its "
                  "first file\n");
        for (const std::string &line : lines_of(manifest())) {
            const auto json = nlohmann::json::parse(line);
            EXPECT_EQ(json.at("output").is_null(), json.at("status") != "converted") << line;
        }
    }
    EXPECT_EQ(names(), "manifest.ndjson\ntorn.tar/in/a.txt\n");
}

// A README among the letters and a link are no reason for a code that scripts take for a failure.
TEST_F(Batch, SucceedsWhereAllThatIsLeftIsNoDocument)
{
    write_letter("in/a", "Hello");
    write("in/README.TXT", "Read me.");
    fs::create_symlink("a", directory / "in/link");
    const Outcome outcome = run({"batch", "in", "-o", "out", "-t", "text"});
    EXPECT_EQ(outcome.exit_code, 0);
    EXPECT_NE(outcome.errors.find("3 files: 1 converted, 2 ignored (1 not_a_document, 1 "
                                  "skipped)\n"),
              std::string::npos)
        << outcome.errors;
    EXPECT_EQ(run({"batch", "in", "-o", "out", "-t", "text", "--strict"}).exit_code, 1);
    fs::remove(directory / "in/README.TXT");
    EXPECT_EQ(run({"batch", "in", "-o", "out", "-t", "text", "--strict"}).exit_code, 0);
}

// A module is part of what made an output.
TEST_F(Batch, ConvertsAgainWithAnotherModule)
{
    write_letter("in/a", "Hello");
    run({"batch", "in", "-o", "out", "-t", "text"});
    run({"batch", "in", "-o", "out", "-t", "text", "--module", "linked"});
    EXPECT_EQ(nlohmann::json::parse(manifest()).at("module"), "linked");
}

// An input could take the place of what the run itself writes.
TEST_F(Batch, KeepsItsOwnFilesFree)
{
    write_letter("in/manifest", "Hello");
    write_letter("manifest", "Hello");
    write_letter("manifest.json.partial/a", "Hello");
    const Outcome outcome = run({"batch", "manifest", "manifest.json.partial", "in", "-o", "out",
                                 "-t", "json", "--manifest", "out/manifest.json"});
    EXPECT_EQ(outcome.exit_code, 0) << outcome.errors;
    EXPECT_EQ(names(), "in/manifest.json\n"
                       "manifest (2).json\n"
                       "manifest.json\n"
                       "manifest.json (2).partial/a.json\n");
}

TEST_F(Batch, IsTheSameForAnyNumberOfWorkers)
{
    write_letters(1100); // more than wait for a line at once
    write("in/other", "no document");
    run({"batch", "in", "-o", "one", "-t", "html", "-j", "1"});
    EXPECT_EQ(lines_of(manifest("one/manifest.ndjson")).size(), 1101U);
    for (const char *jobs : {"2", "4"}) {
        run({"batch", "in", "-o", jobs, "-t", "html", "-j", jobs});
        EXPECT_EQ(files(jobs), files("one"));
    }
}

// ------------------------------------------------------------------- ended and resumed -----

TEST_F(Batch, GoesOnAfterBeingKilled)
{
    constexpr std::size_t killed_after = 200;
    write_letters(2000);
    const std::vector<std::string> arguments = {"batch", "in",   "-o", "out",
                                                "-t",    "text", "-j", "2"};
    const pid_t child = start(arguments);
    wait_for_lines(killed_after);
    ::kill(child, SIGKILL);
    int status = 0;
    ::waitpid(child, &status, 0);
    ASSERT_TRUE(WIFSIGNALED(status)) << "was done too early to be killed";
    const std::string first = lines_of(manifest("out/manifest.ndjson.partial")).front();
    const fs::path first_output =
        directory / "out" / nlohmann::json::parse(first).at("output").at("name").get<std::string>();
    const auto written = fs::last_write_time(first_output);

    EXPECT_EQ(run(arguments).exit_code, 0);
    EXPECT_EQ(fs::last_write_time(first_output), written) << "was converted again";
    run({"batch", "in", "-o", "fresh", "-t", "text"});
    EXPECT_EQ(files(), files("fresh"));
    EXPECT_EQ(files().size(), 2001U);
}

TEST_F(Batch, IsInterruptedInOrder)
{
    write_letters(2000);
    const std::vector<std::string> arguments = {"batch", "in", "-o", "out", "-t", "text"};
    const pid_t child = start(arguments);
    wait_for_lines(50);
    ::kill(child, SIGTERM);
    EXPECT_EQ(outcome_of(child).exit_code, 130);
    EXPECT_EQ(names().find(".pfsdoc-"), std::string::npos) << "a temporary file is left";
    EXPECT_NE(names().find("manifest.ndjson.partial"), std::string::npos);
    EXPECT_EQ(run(arguments).exit_code, 0);
    run({"batch", "in", "-o", "fresh", "-t", "text"});
    EXPECT_EQ(files(), files("fresh"));
}

// Whoever writes a list may take as long as a person, or never come.
TEST_F(Batch, IsInterruptedWhileItWaitsForAList)
{
    const std::string list = directory / "list";
    ASSERT_EQ(::mkfifo(list.c_str(), 0600), 0);
    for (const bool has_writer : {false, true}) {
        const pid_t child = start({"batch", "--files-from", "list", "-o", "out", "-t", "text"});
        std::ofstream writer;
        if (has_writer) {
            writer.open(list);
        }
        wait_for_manifest();
        ::kill(child, SIGTERM);
        EXPECT_EQ(outcome_of(child).exit_code, 130);
        fs::remove_all(directory / "out");
    }
}

TEST_F(Batch, WaitsForAListThatComesLate)
{
    write_letter("in/a", "Hello");
    ASSERT_EQ(::mkfifo((directory / "list").c_str(), 0600), 0);
    const pid_t child = start({"batch", "--files-from", "list", "-o", "out", "-t", "text"});
    wait_for_manifest();
    write("list", "in/a\n");
    EXPECT_EQ(outcome_of(child).exit_code, 0);
    EXPECT_EQ(statuses(), "in/a: converted\n");
}

TEST_F(Batch, ConvertsAgainWhatIsNotAsItWas)
{
    for (const char *name : {"same", "changed", "missing"}) {
        write_letter(std::string("in/") + name, "Hello");
    }
    const std::vector<std::string> arguments = {"batch", "in", "-o", "out", "-t", "text"};
    run(arguments);
    const auto before = fs::last_write_time(directory / "out/in/same.txt");
    write_letter("in/changed", "Howdy");
    fs::remove(directory / "out/in/missing.txt");
    const std::string text = content_of(directory / "out/in/same.txt");
    EXPECT_EQ(run(arguments).exit_code, 0);
    EXPECT_EQ(fs::last_write_time(directory / "out/in/same.txt"), before);
    EXPECT_NE(content_of(directory / "out/in/changed.txt").find("Howdy"), std::string::npos);
    EXPECT_EQ(content_of(directory / "out/in/missing.txt"), text);
    run({"batch", "in", "-o", "fresh", "-t", "text"});
    EXPECT_EQ(files(), files("fresh"));

    const std::string other_options = "--wrap 7";
    run({"batch", "in", "-o", "out", "-t", "text", "--wrap", "7"});
    for (const std::string &line : lines_of(manifest())) {
        EXPECT_EQ(nlohmann::json::parse(line).at("options"), other_options);
    }
}

// A manifest of another run, or one that was tampered with, is no reason to leave anything out.
TEST_F(Batch, TakesOverNoLineThatIsNone)
{
    write_letter("in/a", "Hello");
    const std::vector<std::string> arguments = {"batch", "in", "-o", "out", "-t", "text"};
    run(arguments);
    const std::string whole = manifest();
    const std::vector<std::string> cut = {whole.substr(0, whole.size() / 2),
                                          R"({"name":"in/a","status":7})"
                                          "\n",
                                          R"({"name":)" + std::string(100000, '[')};
    for (const std::string &left : cut) {
        write("out/manifest.ndjson.partial", left);
        fs::remove(directory / "out/manifest.ndjson");
        EXPECT_EQ(run(arguments).exit_code, 0);
        EXPECT_EQ(manifest(), whole);
        EXPECT_EQ(names(), "in/a.txt\nmanifest.ndjson\n");
    }
}

// ------------------------------------------------------------------------ the output -----

TEST_F(Batch, EndsWhereNothingCanBeWritten)
{
    write_letter("in/a", "Hello");
    EXPECT_EQ(run({"batch", "in", "-o", "/proc/none", "-t", "text"}).exit_code, 7);
    EXPECT_EQ(run({"batch", "in", "-o", "out", "-t", "text", "--manifest", "/proc/m"}).exit_code,
              7);
    write("file", "");
    EXPECT_EQ(run({"batch", "in", "-o", "file/out", "-t", "text"}).exit_code, 7);
}

// The system's own limit of a file's size stands for a disk that is full.
TEST_F(Batch, EndsWhereThereIsNoRoom)
{
    write_letter("in/a", "small");
    write_letter("in/b", std::string(3000, 'x'));
    write_letter("in/c", "small");
    rlimit before{};
    ::getrlimit(RLIMIT_FSIZE, &before);
    const rlimit tight{2000, before.rlim_max};
    ::setrlimit(RLIMIT_FSIZE, &tight);
    const pid_t child = start({"batch", "in", "-o", "out", "-t", "text", "-j", "1"});
    ::setrlimit(RLIMIT_FSIZE, &before);
    const Outcome outcome = outcome_of(child);
    EXPECT_EQ(outcome.exit_code, 7);
    EXPECT_NE(outcome.errors.find("cannot be written: File too large"), std::string::npos)
        << outcome.errors;
    EXPECT_EQ(names(), "in/a.txt\nmanifest.ndjson.earlier\nmanifest.ndjson.partial\n");
    EXPECT_EQ(statuses("out/manifest.ndjson.partial"), "in/a: converted\n");
    EXPECT_EQ(run({"batch", "in", "-o", "out", "-t", "text"}).exit_code, 0);
    EXPECT_EQ(names(), "in/a.txt\nin/b.txt\nin/c.txt\nmanifest.ndjson\n");
}

TEST_F(Batch, KeepsToOneRunAtATime)
{
    fs::create_directories(directory / "out");
    const int other = ::open((directory / partial).c_str(), O_CREAT | O_RDWR | O_CLOEXEC, 0600);
    ASSERT_EQ(::flock(other, LOCK_EX), 0);
    expect_failure(run({"batch", "in", "-o", "out", "-t", "text"}), 7, "pfsdoc: another run is");
    ::close(other);
}

TEST_F(Batch, GivesAFileThatHasNoPlaceAStatus)
{
    write_letter("in/a", "Hello");
    write_letter("in/b", "Hello");
    fs::create_directories(directory / "out/in/a.txt/b");
    EXPECT_EQ(run({"batch", "in", "-o", "out", "-t", "text"}).exit_code, 1);
    EXPECT_EQ(statuses(), "in/a: name, out/in/a.txt cannot be written: Is a directory\n"
                          "in/b: converted\n");
    EXPECT_EQ(names(), "in/b.txt\nmanifest.ndjson\n");
}

// The library behind the digests reads its settings when it is first used, which must not be in
// a sandbox. A pipe has them for one process only: another would wait for them.
TEST_F(Batch, NeedsNoFileForDigestsInAWorker)
{
    write_letter("in/a", "Hello");
    const std::string settings = directory / "settings";
    ASSERT_EQ(::mkfifo(settings.c_str(), 0600), 0);
    ::setenv("OPENSSL_CONF", settings.c_str(), 1);
    const pid_t child =
        start({"batch", "in", "-o", "out", "-t", "text", "--no-sandbox", "--max-time", "1", "-q"});
    ::unsetenv("OPENSSL_CONF");
    write("settings", "\n");
    EXPECT_EQ(outcome_of(child).exit_code, 0);
    EXPECT_EQ(statuses(), "in/a: converted\n");
}

// ------------------------------------------------------------------ limits and usage -----

TEST_F(Batch, KeepsToLimits)
{
    write_letter("in/a", "small");
    write_letter("in/b", std::string(3000, 'x'));
    EXPECT_EQ(run({"batch", "in", "-o", "out", "-t", "text", "--max-output", "2KB"}).exit_code, 1);
    EXPECT_EQ(statuses(),
              "in/a: converted\nin/b: limit, would give more output than the 2048 bytes allowed\n");
    EXPECT_EQ(names(), "in/a.txt\nmanifest.ndjson\n");
    EXPECT_EQ(run({"batch", "in", "-o", "few", "-t", "text", "--max-input", "3KB"}).exit_code, 1);
    EXPECT_EQ(names("few"), "in/a.txt\nmanifest.ndjson\n");
}

TEST_F(Batch, WritesEveryFormat)
{
    for (const char *format : {"text", "markdown", "json", "pandoc", "html", "trace"}) {
        run({"batch", "a.pfs", "-o", format, "-t", format, "-q", "--sandbox=require"});
        const std::string name =
            nlohmann::json::parse(manifest(std::string(format) + "/manifest.ndjson"))
                .at("output")
                .at("name");
        EXPECT_EQ(content_of(directory / format / name),
                  output_of({"convert", "-t", format, "a.pfs"}));
    }
}

TEST_F(Batch, ReadsListsOfFiles)
{
    write_letter("in/a", "Hello");
    write_letter("in/b", "Hello");
    write("list", "in/b\na.pfs\n");
    EXPECT_EQ(run({"batch", "--files-from", "list", "-o", "out", "-t", "text"}).exit_code, 0);
    EXPECT_EQ(statuses(), "in/b: converted\na.pfs: converted\n");
    EXPECT_EQ(run({"batch", "--files-from", "-", "-o", "from", "-t", "text"}, {.input = "list"})
                  .exit_code,
              0);
    EXPECT_EQ(files("from"), files());
}

TEST_F(Batch, IsQuietWhenItIsToldTo)
{
    EXPECT_EQ(output_of({"batch", "a.pfs", "-o", "out", "-t", "text", "--quiet"}), "");
}

TEST_F(Batch, RefusesWhatMakesNoSense)
{
    const std::vector<std::vector<std::string>> wrong = {
        {"batch"},
        {"batch", "in", "-t", "text"},
        {"batch", "in", "-o", "out"},
        {"batch", "-o", "out", "-t", "text"},
        {"batch", "in", "-o", "out", "-t", "none"},
        {"batch", "in", "-o", "out", "-t", "html", "--wrap", "3"},
        {"batch", "in", "-o", "out", "-t", "text", "-j", "0"},
        {"batch", "in", "-o", "out", "-t", "text", "--max-time", "0"},
        {"batch", "in", "-o", "out", "-t", "text", "--max-time", "nan"},
        {"batch", "in", "-o", "out", "-t", "text", "--max-input=-1"},
        {"batch", "in", "-o", "out", "-t", "text", "--max-input", "0"},
        {"batch", "in", "-o", "out", "-t", "text", "--max-output", "0"},
        {"batch", "in", "-o", "out", "-t", "text", "--max-memory", "much"},
        {"batch", "in", "-o", "out", "-t", "text", "--sandbox", "some"},
        {"batch", "in", "-o", "out", "-t", "text", "--charset", "none"},
        {"batch", "in", "-o", "in", "-t", "text"},
        {"batch", "in", "-o", "out", "-t", "text", "--manifest", "in/m"},
        {"--", "batch"},
    };
    for (const auto &arguments : wrong) {
        expect_failure(run(arguments), 2, "pfsdoc: ");
    }
    EXPECT_FALSE(fs::exists(directory / "out"));
}

TEST_F(Batch, PassesOverItsOwnOutput)
{
    write_letter("in/a", "Hello");
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(run({"batch", "in", "-o", "in/out", "-t", "text"}).exit_code, 0);
        EXPECT_EQ(statuses("in/out/manifest.ndjson"), "in/a: converted\n");
    }
}

TEST_F(Batch, HasAHelpText)
{
    EXPECT_EQ(output_of({"batch", "--help"}).substr(0, 20), "Write many documents");
    EXPECT_NE(output_of({"--help"}).find("  batch "), std::string::npos);
}

} // namespace

} // namespace tests
