#include "batch/trusted/worker_process.h"

#include "batch/wire/records.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <poll.h>
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

// What is left of the memory is in pieces, the process in an unknown state, or the run at its end.
bool ends_its_process(FileStatus status)
{
    return status == FileStatus::memory || status == FileStatus::internal ||
           status == FileStatus::unwritten;
}

bool can_be_read(int socket)
{
    pollfd polled{socket, POLLIN, 0};
    return ::poll(&polled, 1, 0) > 0;
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

Result<WorkerProcess::Reader> WorkerProcess::ask_for_reader()
{
    std::array<int, 2> ends{};
    if (::socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends.data()) != 0) {
        return no_worker(errno);
    }
    Reader reader{base::Descriptor(ends[0])};
    const base::Descriptor other(ends[1]);
    const std::array<int, 1> descriptors = {other.get()};
    reader.launch = launcher_->request(LaunchKind::worker, descriptors);
    return reader;
}

// Closes its socket. Errors: why it was not started.
Result<ChildProcess> WorkerProcess::take_process(Reader &reader)
{
    if (!reader.socket.is_open()) {
        return ChildProcess();
    }
    reader.socket = base::Descriptor();
    return launcher_->take(reader.launch);
}

WorkerProcess::~WorkerProcess()
{
    static_cast<void>(take_process(current_));
    static_cast<void>(take_process(next_));
}

// A job waits in the socket until its process is ready. One that died before its first job is
// noticed here; if it dies now, that shows when the answer is received.
Status WorkerProcess::send_to_next(const Job &job, std::span<const int> descriptors)
{
    constexpr int most_attempts = 3;
    for (int attempt = 0; attempt < most_attempts; ++attempt) {
        if (!next_.socket.is_open()) {
            Result<Reader> reader = ask_for_reader();
            if (!reader.ok()) {
                return reader.error();
            }
            next_ = std::move(reader.value());
        }
        current_ = std::exchange(next_, {});
        if (attempt + 1 == most_attempts || send_record(current_.socket.get(), job, descriptors)) {
            break;
        }
        if (const Result<ChildProcess> dead = take_process(current_); !dead.ok()) {
            return dead.error();
        }
    }
    return {};
}

// One that speaks without being asked is not itself any more.
bool WorkerProcess::takes_another() const
{
    return current_.socket.is_open() && !current_.is_spent && current_.files < files_per_process_ &&
           !can_be_read(current_.socket.get());
}

Status WorkerProcess::send(const Job &job, std::span<const int> descriptors)
{
    if (takes_another()) {
        static_cast<void>(send_record(current_.socket.get(), job, descriptors));
        deadline_ = Clock::now() + max_time_;
        return {};
    }
    deadline_ = Clock::time_point::max();
    if (Status fault = send_to_next(job, descriptors); !fault.ok()) {
        return fault;
    }
    Result<Reader> reader = ask_for_reader();
    if (!reader.ok()) {
        return reader.error();
    }
    next_ = std::move(reader.value());
    if (can_be_read(current_.socket.get())) {
        if (const auto hello = receive_record<Hello>(current_.socket.get())) {
            return accept(*hello);
        }
    }
    return {};
}

Status WorkerProcess::submit(Job job, std::span<const int> descriptors)
{
    job.number = ++job_;
    Status fault = send(job, descriptors);
    ++current_.files;
    return fault;
}

Status WorkerProcess::accept(const Hello &hello)
{
    if (hello.failed != 0) {
        return Error{hello.kind, std::string(hello.words.get()), std::string(hello.remedy.get())};
    }
    sandbox_words_ = hello.words.get();
    current_.is_ready = true;
    deadline_ = Clock::now() + max_time_;
    return {};
}

// Where not even the first process gets ready, none will.
Result<std::optional<Outcome>> WorkerProcess::ended()
{
    Result<ChildProcess> process = take_process(current_);
    if (!process.ok()) {
        return process.error();
    }
    const Error fault = crash(process.value().end());
    if (sandbox_words_.empty()) {
        return fault;
    }
    return std::optional(failed_outcome(FileStatus::crashed, fault));
}

Result<std::optional<Outcome>> WorkerProcess::receive()
{
    if (!current_.is_ready) {
        const auto hello = receive_record<Hello>(current_.socket.get());
        if (!hello) {
            return ended();
        }
        const Status fault = accept(*hello);
        return fault.ok() ? Result<std::optional<Outcome>>(std::nullopt) : fault.error();
    }
    const auto outcome = receive_record<Outcome>(current_.socket.get());
    if (!outcome) {
        return ended();
    }
    const bool is_valid = is_sane(*outcome) && outcome->job == job_;
    current_.is_spent = !is_valid || ends_its_process(outcome->status);
    return std::optional(is_valid ? *outcome : invalid_report());
}

Result<ChildProcess> WorkerProcess::release()
{
    Result<ChildProcess> process = take_process(current_);
    if (process.ok()) {
        process.value().kill();
    }
    return process;
}

Outcome WorkerProcess::end_late()
{
    static_cast<void>(take_process(current_));
    return failed_outcome(FileStatus::timeout, too_late(max_time_));
}

Outcome invalid_report()
{
    return failed_outcome(FileStatus::crashed,
                          {ErrorKind::internal, "the process that read it sent an invalid report",
                           "please report this as a fault of pfsdoc"});
}

} // namespace pfsdoc::batch
