#include "batch/trusted/worker_process.h"

#include "batch/wire/records.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <sys/socket.h>
#include <utility>

namespace pfsdoc::batch {

namespace {

Error no_worker(int error_number)
{
    return {ErrorKind::internal,
            std::string("a worker cannot be started: ") + std::strerror(error_number),
            "close other programs and try again"};
}

Error crash(int wait_status)
{
    return {ErrorKind::internal, "the process that read it was ended " + words_of_end(wait_status),
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

Status WorkerProcess::start()
{
    std::array<int, 2> ends{};
    if (::socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends.data()) != 0) {
        return no_worker(errno);
    }
    socket_ = base::Descriptor(ends[0]);
    const base::Descriptor other(ends[1]);
    const std::array<int, 1> kept = {other.get()};
    Result<ChildProcess> process =
        ChildProcess::start(kept, [&] { role_(other.get(), settings_); });
    if (!process.ok()) {
        return process.error();
    }
    process_ = std::move(process.value());
    is_ready_ = false;
    return {};
}

// A process that died while it had nothing to do is noticed here. A job waits in the socket until
// its process is ready; if that is dead already, it shows when the answer is received.
Status WorkerProcess::submit(const Job &job, std::span<const int> descriptors)
{
    if (process_.id() == 0 || !send_record(socket_.get(), job, descriptors)) {
        end();
        if (Status fault = start(); !fault.ok()) {
            return fault;
        }
        static_cast<void>(send_record(socket_.get(), job, descriptors));
    }
    deadline_ = is_ready_ ? Clock::now() + max_time_ : Clock::time_point::max();
    return {};
}

Status WorkerProcess::receive_hello()
{
    const auto hello = receive_record<Hello>(socket_.get());
    if (!hello) {
        return crash(end());
    }
    if (hello->failed != 0) {
        end();
        return Error{hello->kind, std::string(hello->words.get()),
                     std::string(hello->remedy.get())};
    }
    sandbox_words_ = hello->words.get();
    is_ready_ = true;
    deadline_ = Clock::now() + max_time_;
    return {};
}

Result<std::optional<Outcome>> WorkerProcess::receive()
{
    if (!is_ready_) {
        const Status fault = receive_hello();
        return fault.ok() ? std::optional<Outcome>()
                          : Result<std::optional<Outcome>>(fault.error());
    }
    const auto outcome = receive_record<Outcome>(socket_.get());
    if (!outcome || !is_sane(*outcome)) {
        return std::optional(failed_outcome(FileStatus::crashed, crash(end())));
    }
    if (outcome->status == FileStatus::memory) {
        end(); // what is left of its memory is in pieces
    }
    return outcome;
}

Outcome WorkerProcess::end_late()
{
    end();
    return failed_outcome(FileStatus::timeout, too_late(max_time_));
}

int WorkerProcess::end()
{
    socket_ = base::Descriptor();
    return process_.end();
}

} // namespace pfsdoc::batch
