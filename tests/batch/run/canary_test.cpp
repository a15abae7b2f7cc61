// Readers that have been taken over: each costs its own file, and gets nowhere.
#include "batch/wire/sha256.h"
#include "sandbox/shadow_memory.h"
#include "tests/batch/run/batch_bench.h"

#include <algorithm>

namespace tests {

namespace {

struct Action {
    std::string_view mark;
    std::string_view status;
};

// In the order of their names, as the files are read. A sanitizer's memory is not limited.
std::vector<Action> all_actions()
{
    std::vector<Action> actions = {
        {"connect", "crashed, the process that read it was ended by SIGABRT"},
        {"crash", "crashed, the process that read it was ended by SIGSEGV"},
        {"exit", "crashed, the process that read it was ended with code 3"},
        {"flood", "limit, would give more output than the 1048576 bytes allowed"},
        {"fork", "crashed, the process that read it was ended by SIGABRT"},
        {"hang", "timeout, takes longer than 0.5 seconds"},
        {"kill", "crashed, the process that read it was ended by SIGSYS"},
        {"lose", "internal, the output cannot be written: Bad file descriptor"},
        {"open", "crashed, the process that read it was ended by SIGABRT"},
    };
    if (!pfsdoc::sandbox::memory_is_shadowed) {
        actions.push_back({"memory", "memory, needs more memory than the limit"});
    }
    std::sort(actions.begin(), actions.end(),
              [](const Action &one, const Action &other) { return one.mark < other.mark; });
    return actions;
}
const std::vector<Action> actions = all_actions();

class Canary : public Batch {
protected:
    void SetUp() override
    {
        Batch::SetUp();
        for (const Action &action : actions) {
            write_letter("in/" + std::string(action.mark), "canary " + std::string(action.mark));
            write_letter("in/" + std::string(action.mark) + ".next", "Hello");
        }
    }
    std::vector<std::string> arguments(const std::string &output, const std::string &jobs) const
    {
        return {"in",         "-o",  output,         "-t",    "text",         "-j", jobs,
                "--max-time", "0.5", "--max-memory", "256MB", "--max-output", "1MB"};
    }
};

TEST_F(Canary, CostsItsOwnFileOnly)
{
    std::string expected;
    for (const Action &action : actions) {
        expected += "in/" + std::string(action.mark) + ": " + std::string(action.status) + "\n";
        expected += "in/" + std::string(action.mark) + ".next: converted\n";
    }
    EXPECT_EQ(run(arguments("out", "1")).exit_code, 1);
    EXPECT_EQ(statuses(), expected);
    EXPECT_EQ(files().size(), actions.size() + 1) << names();
    // Again, with more workers: what crashed is tried again, and ends in the same way.
    EXPECT_EQ(run(arguments("out", "3")).exit_code, 1);
    EXPECT_EQ(statuses(), expected);
    run(arguments("other", "3"));
    EXPECT_EQ(files("other"), files());
}

TEST_F(Canary, DoesWhatTheOptionSays)
{
    write_letter("one/bird", "a canary");
    write_letter("one/letter", "Hello");
    for (const auto &[name, status] : actions) {
        if (name == "memory") {
            continue; // its status depends on what the limit is
        }
        const std::string action(name);
        EXPECT_EQ(run({"one", "-o", action, "-t", "text", "--canary", action, "--max-time", "0.5",
                       "--max-output", "1MB"})
                      .exit_code,
                  1);
        EXPECT_EQ(statuses(action + "/manifest.ndjson"),
                  "one/bird: " + std::string(status) + "\none/letter: converted\n");
    }
}

// ---- readers that work for whoever took them over ----

// Letters behind the bird that are read by the same worker, and what must become of them.
class TakenOver : public Batch {
protected:
    static constexpr int letters = 40;

    void SetUp() override
    {
        Batch::SetUp();
        for (int i = 0; i < letters; ++i) {
            write_letter(name(i), "Letter number " + std::to_string(i));
        }
    }
    static std::string name(int number)
    {
        return "in/letter" + std::to_string(100 + number);
    }
    void expect_letters(int first = 0) const
    {
        for (int i = first; i < letters; ++i) {
            EXPECT_EQ(content_of(directory / ("out/" + name(i) + ".txt")),
                      "Letter number " + std::to_string(i) + "\n");
        }
    }
    // Of the bird's line, and no line but the letters' besides.
    std::string status_of_bird() const
    {
        std::string converted;
        for (int i = 0; i < letters; ++i) {
            converted += name(i) + ": converted\n";
        }
        const std::string all = statuses();
        const std::size_t end = all.find('\n');
        EXPECT_EQ(all.substr(end + 1), converted);
        return all.substr(0, end);
    }
    // Each output is what the manifest says.
    void expect_true_manifest() const
    {
        for (const std::string &line : lines_of(manifest())) {
            const auto json = nlohmann::json::parse(line);
            if (!json.at("output").is_null()) {
                const std::string output =
                    content_of(directory / "out" / json.at("output").at("name").get<std::string>());
                EXPECT_EQ(json.at("output").at("sha256").get<std::string>(),
                          pfsdoc::batch::hex_of(pfsdoc::batch::sha256_of(output)));
                EXPECT_EQ(json.at("output").at("size").get<std::size_t>(), output.size());
            }
        }
    }
    Outcome run_with(const std::string &action, const std::string &jobs,
                     const std::string &files_per_process = "1")
    {
        write_letter("in/a", "canary " + action);
        return run({"in", "-o", "out", "-t", "text", "-j", jobs, "--max-time", "2",
                    "--files-per-process", files_per_process});
    }
};

TEST_F(TakenOver, AnswersForNoOtherFile)
{
    for (const std::string jobs : {"1", "3"}) {
        run_with("answer", jobs);
        EXPECT_EQ(status_of_bird(), "in/a: converted") << "about itself it may say what it likes";
        EXPECT_EQ(content_of(directory / "out/in/a.txt"), "forged");
        expect_letters();
        expect_true_manifest();
        fs::remove_all(directory / "out");
    }
}

TEST_F(TakenOver, CostsNoMoreThanTheFilesOfItsProcess)
{
    constexpr int files_of_process = 8;
    for (const std::string action : {"answer", "live", "write"}) {
        run_with(action, "1", std::to_string(files_of_process));
        EXPECT_EQ(lines_of(manifest()).size(), letters + 1) << action;
        expect_letters(files_of_process - 1);
        expect_true_manifest();
        fs::remove_all(directory / "out");
    }
}

TEST_F(TakenOver, ReachesNoOtherFilesOutput)
{
    EXPECT_EQ(run_with("live", "1").exit_code, 0);
    EXPECT_EQ(status_of_bird(), "in/a: converted");
    expect_letters();
    expect_true_manifest();
}

TEST_F(TakenOver, IsFoundOutWhereItsOutputIsNotWhatItReports)
{
    EXPECT_EQ(run_with("lie", "1").exit_code, 1);
    EXPECT_EQ(status_of_bird(), "in/a: crashed, the process that read it sent an invalid report");
    expect_letters();
}

// Whether it was ended before it could or after it did: the output is what the manifest says.
TEST_F(TakenOver, WritesNothingBehindItsReport)
{
    run_with("write", "1");
    status_of_bird();
    expect_letters();
    expect_true_manifest();
}

TEST_F(TakenOver, ReadsNothingOfTheList)
{
    write_letter("in/a", "canary read");
    std::string list = "in/a\n";
    for (int i = 0; i < letters; ++i) {
        list += name(i) + "\n";
    }
    write("list", list);
    const Streams from_list{.input = directory / "list"};
    EXPECT_EQ(
        run({"--files-from", "-", "-o", "out", "-t", "text", "-j", "1", "--files-per-process", "1"},
            from_list)
            .exit_code,
        0);
    EXPECT_EQ(status_of_bird(), "in/a: converted");
    EXPECT_EQ(content_of(directory / "out/in/a.txt"), "canary read\n");
}

TEST_F(TakenOver, WritesNothingToTheTerminal)
{
    const Outcome shouted = run_with("shout", "1");
    EXPECT_EQ(shouted.exit_code, 0);
    EXPECT_EQ(shouted.output.find("escaped"), std::string::npos);
    EXPECT_EQ(shouted.errors.find("escaped"), std::string::npos);
}

TEST_F(TakenOver, ChangesNoFlags)
{
    EXPECT_EQ(run_with("flags", "1").exit_code, 1);
    EXPECT_EQ(status_of_bird(), "in/a: crashed, the process that read it was ended by SIGABRT");
}

// Limits leave room for the sandbox, and what they say is so.
TEST_F(TakenOver, HasASandboxHoweverLittleMemoryThereIs)
{
    if (pfsdoc::sandbox::memory_is_shadowed) {
        GTEST_SKIP() << "a sanitizer's memory is not limited";
    }
    const Outcome run_of_it =
        run({"in", "-o", "out", "-t", "odt", "--max-memory", "1", "--sandbox", "require", "-v"});
    EXPECT_NE(run_of_it.errors.find("sandbox: seccomp, Landlock"), std::string::npos)
        << run_of_it.errors;
    EXPECT_EQ(run_of_it.errors.find("not available"), std::string::npos) << run_of_it.errors;
}

// What the sandbox keeps it from would work: the reader tries in earnest.
TEST_F(Canary, GetsOutWithoutASandbox)
{
    for (const std::string name : {"open", "connect", "fork", "kill", "flags"}) {
        write_letter("in/" + name, "canary " + name);
        EXPECT_EQ(run({"in/" + name, "-o", "out", "-t", "text", "--no-sandbox"}).exit_code, 0);
        EXPECT_EQ(content_of(directory / "out" / (name + ".txt")).substr(0, 7), "escaped");
    }
}

} // namespace

} // namespace tests
