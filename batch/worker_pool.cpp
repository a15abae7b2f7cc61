#include "worker_pool.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <poll.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

namespace pfsdoc {

namespace {

int wait_for(pid_t process)
{
    int status = 0;
    while (::waitpid(process, &status, 0) < 0 && errno == EINTR) {
    }
    return status;
}

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

Outcome crash(int wait_status)
{
    const std::string how = WIFSIGNALED(wait_status)
                                ? "by " + signal_name(WTERMSIG(wait_status))
                                : "with code " + std::to_string(WEXITSTATUS(wait_status));
    return failed_outcome(FileStatus::crashed,
                          {ErrorKind::internal, "the process that read it was ended " + how,
                           "please report this as a fault of pfsdoc"});
}

Outcome too_late(std::chrono::milliseconds max_time)
{
    const auto seconds = std::chrono::duration<double>(max_time).count();
    std::string words = std::to_string(seconds);
    words.erase(words.find_last_not_of('0') + 1);
    words.erase(words.find_last_not_of('.') + 1);
    return failed_outcome(FileStatus::timeout,
                          {ErrorKind::limit, "takes longer than " + words + " seconds",
                           "allow more with --max-time"});
}

} // namespace

WorkerPool::WorkerPool(const PoolSettings &settings)
    : settings_(settings), workers_(settings.workers)
{
}

WorkerPool::~WorkerPool()
{
    for (Worker &worker : workers_) {
        if (worker.process != 0) {
            ::kill(worker.process, SIGKILL);
            wait_for(worker.process);
        }
    }
}

bool WorkerPool::has_idle() const
{
    return std::any_of(workers_.begin(), workers_.end(),
                       [](const Worker &worker) { return !worker.file; });
}

bool WorkerPool::has_busy() const
{
    return std::any_of(workers_.begin(), workers_.end(),
                       [](const Worker &worker) { return worker.file.has_value(); });
}

// Entering a sandbox is a matter of milliseconds, so this waits for the worker's word.
Status WorkerPool::start(Worker &worker)
{
    std::array<int, 2> ends{};
    if (::socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends.data()) != 0) {
        return no_worker(errno);
    }
    OpenFile own(ends[0]);
    OpenFile other(ends[1]);
    const pid_t parent = ::getpid();
    settings_.before_fork();
    const pid_t process = ::fork();
    if (process < 0) {
        return no_worker(errno);
    }
    if (process == 0) {
        run_worker(other.get(), parent, settings_.worker);
    }
    other = OpenFile();
    const std::optional<Hello> hello = receive_record<Hello>(own.get());
    if (!hello || hello->failed != 0) {
        const Outcome end = crash(wait_for(process));
        return hello ? Error{ErrorKind::internal, std::string(hello->words.get()),
                             std::string(hello->remedy.get())}
                     : Error{ErrorKind::internal, std::string(end.what.get()),
                             std::string(end.remedy.get())};
    }
    sandbox_words_ = hello->words.get();
    worker.process = process;
    worker.socket = std::move(own);
    return {};
}

// A worker that died while it had nothing to do is noticed here at the latest.
Status WorkerPool::submit(uint64_t file, const Job &job, std::span<const int> descriptors)
{
    Worker &worker = *std::find_if(workers_.begin(), workers_.end(),
                                   [](const Worker &one) { return !one.file; });
    if (worker.process != 0 && !send_record(worker.socket.get(), job, descriptors)) {
        bury(worker);
    } else if (worker.process != 0) {
        worker.file = file;
    }
    if (worker.process == 0) {
        if (Status fault = start(worker)) {
            return fault;
        }
        // If it is dead already, that shows as a crash over this file.
        static_cast<void>(send_record(worker.socket.get(), job, descriptors));
        worker.file = file;
    }
    worker.deadline = Clock::now() + settings_.max_time;
    return {};
}

// A process that is dying already dies of what it is dying of.
Finished WorkerPool::bury(Worker &worker)
{
    ::kill(worker.process, SIGKILL);
    const Finished finished{worker.file.value_or(0), crash(wait_for(worker.process))};
    worker = Worker();
    return finished;
}

Finished WorkerPool::kill_late(Worker &worker)
{
    const uint64_t file = *worker.file;
    bury(worker);
    return {file, too_late(settings_.max_time)};
}

Finished WorkerPool::receive(Worker &worker)
{
    const std::optional<Outcome> outcome = receive_record<Outcome>(worker.socket.get());
    if (outcome && is_sane(*outcome)) {
        const uint64_t file = *worker.file;
        worker.file.reset();
        if (outcome->status == FileStatus::memory) {
            bury(worker); // what is left of its memory is in pieces
        }
        return Finished{file, *outcome};
    }
    return bury(worker);
}

std::chrono::milliseconds WorkerPool::until_next_deadline(std::chrono::milliseconds patience) const
{
    const Clock::time_point now = Clock::now();
    for (const Worker &worker : workers_) {
        if (worker.file) {
            const auto left = std::chrono::ceil<std::chrono::milliseconds>(worker.deadline - now);
            patience = std::clamp(left, std::chrono::milliseconds(0), patience);
        }
    }
    return patience;
}

std::vector<Finished> WorkerPool::wait(int wake, std::chrono::milliseconds patience)
{
    std::vector<pollfd> polled;
    for (const Worker &worker : workers_) {
        polled.push_back({worker.file ? worker.socket.get() : -1, POLLIN, 0});
    }
    polled.push_back({wake, POLLIN, 0});
    const int ready = ::poll(polled.data(), polled.size(),
                             static_cast<int>(until_next_deadline(patience).count()));
    std::vector<Finished> finished;
    const Clock::time_point now = Clock::now();
    for (std::size_t i = 0; i < workers_.size(); ++i) {
        Worker &worker = workers_[i];
        if (ready > 0 && polled[i].revents != 0) {
            finished.push_back(receive(worker));
        } else if (worker.file && now >= worker.deadline) {
            finished.push_back(kill_late(worker));
        }
    }
    return finished;
}

} // namespace pfsdoc
