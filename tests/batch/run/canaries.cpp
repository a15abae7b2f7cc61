// A reader that has been taken over by the document: it does what a mark in the text asks for,
// or with --canary that to each document that has the word.
// What a sandbox should have kept it from leaves a word in the output, for the tests to find.
#include "batch/sandboxed/test_hook.h"
#include "batch/wire/outcome.h"
#include "batch/wire/records.h"
#include "batch/wire/sha256.h"

#include <array>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <fcntl.h>
#include <memory>
#include <string>
#include <string_view>
#include <sys/socket.h>
#include <sys/stat.h>
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

// The next write fails, and would not anywhere else.
void lose_output(Output &output)
{
    constexpr int most_descriptors = 256;
    for (int descriptor = STDERR_FILENO + 1; descriptor < most_descriptors; ++descriptor) {
        struct stat status {};
        const bool is_file = ::fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode);
        if (is_file && (::fcntl(descriptor, F_GETFL) & O_ACCMODE) != O_RDONLY) {
            ::close(descriptor);
        }
    }
    output.write(std::string(1 << 20, 'x'));
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

// Of the descriptors that are open, beside the standard streams.
int descriptor_that(bool (*is_wanted)(const struct stat &status, int access))
{
    constexpr int most_descriptors = 64;
    for (int descriptor = STDERR_FILENO + 1; descriptor < most_descriptors; ++descriptor) {
        struct stat status {};
        const int flags = ::fcntl(descriptor, F_GETFL);
        if (flags >= 0 && ::fstat(descriptor, &status) == 0 &&
            is_wanted(status, flags & O_ACCMODE)) {
            return descriptor;
        }
    }
    std::abort();
}

int own_socket()
{
    return descriptor_that([](const struct stat &status, int) { return S_ISSOCK(status.st_mode); });
}

int own_output()
{
    return descriptor_that([](const struct stat &status, int access) {
        return S_ISREG(status.st_mode) && access == O_RDWR;
    });
}

constexpr std::string_view forgery = "forged";

// A report that the run would believe, about an output that has those words.
batch::Outcome forged_outcome(uint64_t job)
{
    batch::Outcome outcome;
    outcome.job = job;
    outcome.status = batch::FileStatus::converted;
    outcome.kind = 0;
    outcome.confidence = 0;
    outcome.has_input_digest = 1;
    outcome.output_size = forgery.size();
    outcome.output_digest = batch::sha256_of(forgery);
    return outcome;
}

void write_forgery(int descriptor)
{
    static_cast<void>(::pwrite(descriptor, forgery.data(), forgery.size(), 0));
}

// For the files to come, before and behind the one for its own.
void answer_for_others(Output &)
{
    constexpr uint64_t many_jobs = 64;
    write_forgery(own_output());
    for (uint64_t job = 1; job < many_jobs; ++job) {
        batch::send_record(own_socket(), forged_outcome(job));
    }
    ::pause();
}

// Answers, and stays: whatever comes to this process then is turned into its own words.
void live_on(Output &)
{
    constexpr int most_descriptors = 64;
    write_forgery(own_output());
    batch::send_record(own_socket(), forged_outcome(1));
    for (;;) {
        for (int descriptor = STDERR_FILENO + 1; descriptor < most_descriptors; ++descriptor) {
            write_forgery(descriptor);
        }
        static_cast<void>(::send(own_socket(), "", 0, MSG_DONTWAIT | MSG_NOSIGNAL));
    }
}

// Reports an output of that size, but with other words.
void report_falsely(Output &)
{
    static_cast<void>(::pwrite(own_output(), "FORGED", forgery.size(), 0));
    batch::send_record(own_socket(), forged_outcome(1));
    ::pause();
}

// Answers, and makes more of its output than it has said.
void write_on(Output &)
{
    write_forgery(own_output());
    batch::send_record(own_socket(), forged_outcome(1));
    for (;;) {
        static_cast<void>(::pwrite(own_output(), "more", 4, 3));
    }
}

void read_standard_input(Output &output)
{
    char bytes[4096];
    while (::read(STDIN_FILENO, bytes, sizeof bytes) > 0) {
        output.write(escaped);
    }
}

void write_to_terminal(Output &)
{
    for (const int stream : {STDOUT_FILENO, STDERR_FILENO}) {
        static_cast<void>(::write(stream, "\x1b]0;escaped\a", 13));
    }
}

void change_flags(Output &output)
{
    end_unless(::fcntl(STDIN_FILENO, F_SETFL, O_NONBLOCK) == 0, output);
}

struct Canary {
    std::string_view name;
    void (*action)(Output &);
};
constexpr std::array<Canary, 17> canaries = {{
    {"crash", crash},
    {"hang", hang},
    {"flood", flood},
    {"memory", eat_memory},
    {"exit", exit_at_once},
    {"lose", lose_output},
    {"open", open_file},
    {"connect", connect_socket},
    {"fork", fork_process},
    {"kill", kill_parent},
    {"answer", answer_for_others},
    {"live", live_on},
    {"lie", report_falsely},
    {"write", write_on},
    {"read", read_standard_input},
    {"shout", write_to_terminal},
    {"flags", change_flags},
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
