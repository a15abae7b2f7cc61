#include "batch/processes/fork_server.h"

#include "batch/processes/records.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <set>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>
#include <vector>

namespace pfsdoc::batch {

namespace {

constexpr int status_of_killed = SIGKILL; // as waitpid has it

enum class Question : int32_t { fork, end };

struct Request {
    Question question;
    ProcessRole role;  // to fork
    pid_t process = 0; // to end
};

struct Reply {
    pid_t process = -1; // that was forked
    int32_t error_number = 0;
    int32_t status = status_of_killed; // of the one that was ended
};

Error no_process(int error_number)
{
    return {ErrorKind::internal,
            std::string("no process can be started: ") + std::strerror(error_number),
            "end other programs and try again"};
}

int wait_for(pid_t process)
{
    int status = status_of_killed;
    while (::waitpid(process, &status, 0) < 0 && errno == EINTR) {
    }
    return status;
}

class Server {
public:
    Server(int socket, const ProcessRoles &roles) : socket_(socket), roles_(roles) {}

    // Until nobody asks any more.
    void serve();

private:
    Reply fork(ProcessRole role, std::span<const int> descriptors);
    Reply end(pid_t process);
    [[noreturn]] void play(ProcessRole role, pid_t server, std::span<const int> descriptors) const;

    int socket_;
    const ProcessRoles &roles_;
    std::set<pid_t> children_;
};

void Server::serve()
{
    std::vector<int> descriptors;
    while (const auto request = receive_record<Request>(socket_, &descriptors)) {
        const Reply reply = request->question == Question::fork ? fork(request->role, descriptors)
                                                                : end(request->process);
        for (const int descriptor : descriptors) {
            ::close(descriptor);
        }
        if (!send_record(socket_, reply)) {
            break;
        }
    }
    for (const pid_t child : children_) {
        ::kill(child, SIGKILL);
        wait_for(child);
    }
}

Reply Server::fork(ProcessRole role, std::span<const int> descriptors)
{
    const pid_t server = ::getpid();
    const pid_t child = ::fork();
    if (child == 0) {
        play(role, server, descriptors);
    }
    if (child < 0) {
        return {.error_number = errno};
    }
    children_.insert(child);
    return {.process = child};
}

Reply Server::end(pid_t process)
{
    if (children_.erase(process) == 0) {
        return {};
    }
    ::kill(process, SIGKILL);
    return {.status = wait_for(process)};
}

void Server::play(ProcessRole role, pid_t server, std::span<const int> descriptors) const
{
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (::getppid() == server) {
        (role == ProcessRole::worker ? roles_.worker : roles_.archive_reader)(descriptors);
    }
    ::_exit(EXIT_FAILURE);
}

// Ctrl-C and requests to end reach all processes of the terminal; it is the run's to say what
// they mean.
void leave_signals_to_run()
{
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        static_cast<void>(std::signal(signal, SIG_IGN));
    }
    ::prctl(PR_SET_NAME, "pfsdoc-forker");
}

} // namespace

Result<std::unique_ptr<ForkServer>> ForkServer::start(const ProcessRoles &roles)
{
    std::array<int, 2> ends{};
    if (::socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends.data()) != 0) {
        return no_process(errno);
    }
    OpenFile own(ends[0]);
    const OpenFile other(ends[1]);
    const pid_t process = ::fork();
    if (process < 0) {
        return no_process(errno);
    }
    if (process == 0) {
        own = OpenFile();
        leave_signals_to_run();
        Server(other.get(), roles).serve();
        ::_exit(EXIT_SUCCESS);
    }
    return std::unique_ptr<ForkServer>(new ForkServer(process, std::move(own)));
}

ForkServer::~ForkServer()
{
    shut_down();
}

Result<pid_t> ForkServer::fork(ProcessRole role, std::span<const int> descriptors)
{
    const std::lock_guard lock(mutex_);
    if (!send_record(socket_.get(), Request{.question = Question::fork, .role = role},
                     descriptors)) {
        return no_process(errno);
    }
    const auto reply = receive_record<Reply>(socket_.get());
    if (!reply || reply->process < 0) {
        return no_process(reply ? reply->error_number : ECHILD);
    }
    return reply->process;
}

int ForkServer::end(pid_t process)
{
    const std::lock_guard lock(mutex_);
    const Request request{.question = Question::end, .role = {}, .process = process};
    const auto reply =
        send_record(socket_.get(), request) ? receive_record<Reply>(socket_.get()) : std::nullopt;
    return reply.value_or(Reply()).status;
}

void ForkServer::shut_down()
{
    const std::lock_guard lock(mutex_);
    socket_ = OpenFile();
    if (process_ > 0) {
        wait_for(std::exchange(process_, -1));
    }
}

} // namespace pfsdoc::batch
