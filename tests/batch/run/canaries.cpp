// A reader that has been taken over by the document: it does what a mark in the text asks for,
// or with --canary that to each document that has the word.
// What a sandbox should have kept it from leaves a word in the output, for the tests to find.
#include "batch/sandboxed/test_hook.h"

#include <array>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <memory>
#include <string>
#include <string_view>
#include <sys/socket.h>
#include <unistd.h>
#include <vector>

namespace pfsdoc {

namespace {

constexpr std::string_view escaped = "escaped";

// By the signal itself, also where a sanitizer would make an error message of it.
void crash(Output &)
{
    static_cast<void>(std::signal(SIGSEGV, SIG_DFL));
    static_cast<void>(std::raise(SIGSEGV));
}

void hang(Output &)
{
    const volatile bool forever = true;
    while (forever) {
    }
}

// Round the writer's own limit, as far as the program lets it.
void flood(Output &output)
{
    const std::string much(1 << 16, 'x');
    for (int i = 0; i < 1 << 12; ++i) {
        output.write(much);
    }
}

// Asking is enough to come to the limit, and quicker than using it.
void eat_memory(Output &)
{
    for (std::vector<std::unique_ptr<char[]>> meals;;) {
        meals.push_back(std::make_unique_for_overwrite<char[]>(std::size_t{1} << 24));
    }
}

void exit_at_once(Output &)
{
    ::_exit(3);
}

// What must not work. Where it does not, the reader gives up.
void end_unless(bool works, Output &output)
{
    if (!works) {
        std::abort();
    }
    output.write(escaped);
}

void open_file(Output &output)
{
    end_unless(::open("/etc/passwd", O_RDONLY | O_CLOEXEC) >= 0, output);
}

void connect_socket(Output &output)
{
    end_unless(::socket(AF_UNIX, SOCK_STREAM, 0) >= 0, output);
}

void fork_process(Output &output)
{
    const pid_t child = ::fork();
    if (child == 0) {
        ::_exit(0);
    }
    end_unless(child > 0, output);
}

void kill_parent(Output &output)
{
    end_unless(::kill(::getppid(), 0) == 0, output);
}

struct Canary {
    std::string_view name;
    void (*action)(Output &);
};
constexpr std::array<Canary, 9> canaries = {{
    {"crash", crash},
    {"hang", hang},
    {"flood", flood},
    {"memory", eat_memory},
    {"exit", exit_at_once},
    {"open", open_file},
    {"connect", connect_socket},
    {"fork", fork_process},
    {"kill", kill_parent},
}};

constexpr std::string_view mark = "canary";

std::string chosen; // by --canary

} // namespace

void batch::add_test_hook_option(CLI::App &app)
{
    std::vector<std::string> names;
    for (const Canary &canary : canaries) {
        names.emplace_back(canary.name);
    }
    app.add_option("--canary", chosen)->check(CLI::IsMember(names));
}

void batch::run_test_hook(ByteSource &document, Output &output)
{
    std::vector<uint8_t> bytes(document.size());
    document.read_at(0, bytes);
    const std::string_view text(reinterpret_cast<const char *>(bytes.data()), bytes.size());
    for (const Canary &canary : canaries) {
        const std::string wanted = std::string(mark) + " " + std::string(canary.name);
        const bool is_chosen = chosen == canary.name && text.find(mark) != std::string_view::npos;
        if (is_chosen || text.find(wanted) != std::string_view::npos) {
            canary.action(output);
        }
    }
}

} // namespace pfsdoc
