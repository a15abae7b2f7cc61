#include "batch/trusted/launcher.h"

#include "batch/wire/records.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <sys/socket.h>
#include <utility>

namespace pfsdoc::batch {

namespace {

Error not_started(const std::string &why)
{
    return {ErrorKind::internal, "no process can be started: " + why,
            "close other programs and try again"};
}

} // namespace

Result<Launcher> Launcher::start(LauncherRole role, const LauncherSettings &settings)
{
    std::array<int, 2> ends{};
    if (::socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends.data()) != 0) {
        return not_started(std::strerror(errno));
    }
    base::Descriptor socket(ends[0]);
    const base::Descriptor other(ends[1]);
    const std::array<int, 1> kept = {other.get()};
    Result<ChildProcess> process = ChildProcess::start(kept, [&] { role(other.get(), settings); });
    if (!process.ok()) {
        return process.error();
    }
    return Launcher(std::move(process.value()), std::move(socket));
}

// Where the launcher is gone, take() reports it.
uint64_t Launcher::request(LaunchKind kind, std::span<const int> descriptors)
{
    static_cast<void>(send_record(socket_.get(), LaunchRequest{kind}, descriptors));
    return requested_++;
}

Result<ChildProcess> Launcher::receive()
{
    const auto reply = receive_record<LaunchReply>(socket_.get());
    if (!reply) {
        return not_started("the one that starts others was ended");
    }
    if (reply->error_number != 0) {
        return not_started(std::strerror(reply->error_number));
    }
    return ChildProcess::of(reply->process);
}

Result<ChildProcess> Launcher::take(uint64_t request)
{
    for (; answered_ <= request; ++answered_) {
        started_.emplace(answered_, receive());
    }
    return std::move(started_.extract(request).mapped());
}

} // namespace pfsdoc::batch
