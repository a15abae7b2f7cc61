#include "batch/trusted/output_commits.h"

#include "batch/wire/records.h"

#include <array>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <optional>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <utility>

namespace pfsdoc::batch {

namespace {

struct SyncRequest {
    int32_t unused = 0;
};

struct SyncReply {
    int32_t error_number = 0;
};

void sync_on_request(int socket, const OutputFolder &folder)
{
    ::prctl(PR_SET_NAME, "pfsdoc-sync");
    while (receive_record<SyncRequest>(socket) && send_record(socket, SyncReply{folder.sync()})) {
    }
}

Error not_synced(const std::string &why)
{
    return {ErrorKind::internal, "the process that syncs outputs " + why,
            "close other programs and try again"};
}

} // namespace

Status OutputCommits::start()
{
    std::array<int, 2> ends{};
    if (::socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends.data()) != 0) {
        return not_synced(std::string("cannot be started: ") + std::strerror(errno));
    }
    socket_ = base::Descriptor(ends[0]);
    const base::Descriptor other(ends[1]);
    const std::array<int, 2> kept = {other.get(), folder_.descriptor()};
    Result<ChildProcess> process =
        ChildProcess::start(kept, [&] { sync_on_request(other.get(), folder_); });
    if (!process.ok()) {
        return process.error();
    }
    process_ = std::move(process.value());
    return {};
}

Status OutputCommits::begin(bool others_wait)
{
    const bool is_time =
        waiting_.size() >= synced_at_once || others_wait || Clock::now() - begun_ >= longest_wait;
    if (!is_time || waiting_.empty() || !syncing_.empty()) {
        return {};
    }
    if (process_.id() == 0) {
        if (Status fault = start(); !fault.ok()) {
            return fault;
        }
    }
    begun_ = Clock::now();
    syncing_ = std::exchange(waiting_, {});
    // Where this fails the process is gone, which finish() reports.
    static_cast<void>(send_record(socket_.get(), SyncRequest{}));
    return {};
}

Status OutputCommits::finish()
{
    if (syncing_.empty()) {
        return {};
    }
    const auto reply = receive_record<SyncReply>(socket_.get());
    if (!reply) {
        return not_synced("was ended " + words_of_end(process_.end()));
    }
    if (reply->error_number != 0) {
        return folder_.sync_error(reply->error_number);
    }
    return rename_synced();
}

Status OutputCommits::rename_synced()
{
    for (WholeOutput &whole : std::exchange(syncing_, {})) {
        const Status fault = whole.output.commit();
        if (fault.ok()) {
            whole.entry->finish(whole.status, std::move(whole.line));
        } else if (fault.error().kind == ErrorKind::usage) {
            const Outcome outcome = failed_outcome(FileStatus::name, fault.error());
            whole.entry->finish(outcome.status, record_line(whole.file, recorded_, outcome));
        } else {
            return fault;
        }
    }
    return {};
}

Status OutputCommits::finish_all()
{
    if (Status fault = finish(); !fault.ok()) {
        return fault;
    }
    if (Status fault = begin(true); !fault.ok()) {
        return fault;
    }
    return finish();
}

} // namespace pfsdoc::batch
