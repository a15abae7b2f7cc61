#include "batch/worker_client.h"

#include "batch/processes/processors.h"
#include "batch/processes/records.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <limits>
#include <poll.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <utility>

namespace pfsdoc::batch {

namespace {

// That poll waits at once, in milliseconds.
constexpr int64_t shortest = 0;
constexpr int64_t longest = std::numeric_limits<int>::max();

Error no_worker(int error_number)
{
    return {ErrorKind::internal,
            std::string("a worker cannot be started: ") + std::strerror(error_number),
            "end other programs and try again"};
}

// SIGSEGV, or the number of one without a name.
std::string signal_name(int number)
{
    const char *name = ::sigabbrev_np(number);
    return name != nullptr ? std::string("SIG") + name : "signal " + std::to_string(number);
}

Error crash(int wait_status)
{
    const std::string how = WIFSIGNALED(wait_status)
                                ? "by " + signal_name(WTERMSIG(wait_status))
                                : "with code " + std::to_string(WEXITSTATUS(wait_status));
    return {ErrorKind::internal, "the process that read it was ended " + how,
            "please report this as a fault of pfsdoc"};
}

Error too_late(std::chrono::milliseconds max_time)
{
    const auto seconds = std::chrono::duration<double>(max_time).count();
    std::string words = std::to_string(seconds);
    words.erase(words.find_last_not_of('0') + 1);
    words.erase(words.find_last_not_of('.') + 1);
    return {ErrorKind::limit, "takes longer than " + words + " seconds",
            "allow more with --max-time"};
}

} // namespace

WorkerClient::~WorkerClient()
{
    if (process_ != 0) {
        bury();
    }
}

// Entering a sandbox is a matter of milliseconds, so this waits for the worker's word.
Status WorkerClient::start()
{
    std::array<int, 2> ends{};
    if (::socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends.data()) != 0) {
        return no_worker(errno);
    }
    socket_ = OpenFile(ends[0]);
    OpenFile other(ends[1]);
    const std::array<int, 1> descriptors = {other.get()};
    const Result<pid_t> process = server_.fork(ProcessRole::worker, descriptors);
    if (!process.ok()) {
        return process.error();
    }
    process_ = process.value();
    bind_beside(process_);
    other = OpenFile();
    const auto hello = receive_record<Hello>(socket_.get());
    if (!hello) {
        return crash(bury());
    }
    if (hello->failed != 0) {
        bury();
        return Error{hello->kind, std::string(hello->words.get()),
                     std::string(hello->remedy.get())};
    }
    sandbox_words_ = hello->words.get();
    return {};
}

// A worker that died while it had nothing to do is noticed here.
Status WorkerClient::submit(const Job &job, std::span<const int> descriptors)
{
    if (process_ != 0) {
        if (send_record(socket_.get(), job, descriptors)) {
            return {};
        }
        bury();
    }
    if (Status fault = start()) {
        return fault;
    }
    // If it is dead already, that shows as a crash over this file.
    static_cast<void>(send_record(socket_.get(), job, descriptors));
    return {};
}

// Whether there is an answer in time.
bool WorkerClient::wait() const
{
    using Clock = std::chrono::steady_clock;
    const Clock::time_point deadline = Clock::now() + max_time_;
    pollfd polled{socket_.get(), POLLIN, 0};
    for (;;) {
        const int64_t left =
            std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now()).count();
        const int ready = ::poll(&polled, 1, static_cast<int>(std::clamp(left, shortest, longest)));
        if (ready > 0 || left <= 0) {
            return ready > 0;
        }
    }
}

Outcome WorkerClient::receive()
{
    const auto outcome = receive_record<Outcome>(socket_.get());
    if (!outcome || !is_sane(*outcome)) {
        return failed_outcome(FileStatus::crashed, crash(bury()));
    }
    if (outcome->status == FileStatus::memory) {
        bury(); // what is left of its memory is in pieces
    }
    return *outcome;
}

// A process that is dying already dies of what it is dying of.
int WorkerClient::bury()
{
    socket_ = OpenFile();
    return server_.end(std::exchange(process_, 0));
}

Result<Outcome> WorkerClient::convert(const Job &job, std::span<const int> descriptors)
{
    if (Status fault = submit(job, descriptors)) {
        return std::move(*fault);
    }
    if (!wait()) {
        bury();
        return failed_outcome(FileStatus::timeout, too_late(max_time_));
    }
    return receive();
}

} // namespace pfsdoc::batch
