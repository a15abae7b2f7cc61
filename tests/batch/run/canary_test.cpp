// Readers that have been taken over: each costs its own file, and gets nowhere.
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

// What the sandbox keeps it from would work: the reader tries in earnest.
TEST_F(Canary, GetsOutWithoutASandbox)
{
    for (const std::string name : {"open", "connect", "fork", "kill"}) {
        EXPECT_EQ(run({"in/" + name, "-o", "out", "-t", "text", "--no-sandbox"}).exit_code, 0);
        EXPECT_EQ(content_of(directory / "out" / (name + ".txt")).substr(0, 7), "escaped");
    }
}

} // namespace

} // namespace tests
