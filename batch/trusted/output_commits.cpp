#include "batch/trusted/output_commits.h"

#include "batch/wire/records.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <optional>
#include <span>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <utility>

namespace pfsdoc::batch {

namespace {

// With a folder on each file system.
struct SyncRequest {
    int32_t has_more = 0; // the next request belongs to this one
};

struct SyncReply {
    int32_t error_number = 0;
};

void close_all(std::vector<int> &descriptors)
{
    for (const int descriptor : std::exchange(descriptors, {})) {
        const base::Descriptor closed(descriptor);
    }
}

void sync_on_request(int socket)
{
    ::prctl(PR_SET_NAME, "pfsdoc-sync");
    std::vector<int> volumes;
    std::vector<int> more;
    while (const auto request = receive_record<SyncRequest>(socket, &more)) {
        volumes.insert(volumes.end(), more.begin(), more.end());
        if (request->has_more != 0) {
            continue;
        }
        const bool is_answered = send_record(socket, SyncReply{sync_volumes(volumes)});
        close_all(volumes);
        if (!is_answered) {
            return;
        }
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
    const std::array<int, 1> kept = {other.get()};
    Result<ChildProcess> process = ChildProcess::start(kept, [&] { sync_on_request(other.get()); });
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
    announce_waiting();
    begun_ = Clock::now();
    syncing_ = std::exchange(waiting_, {});
    request_sync();
    return {};
}

void OutputCommits::announce_waiting() const
{
    std::string lines;
    for (const WholeOutput &whole : waiting_) {
        lines += whole.line;
    }
    listener_.announce(lines);
}

// Where this fails the process is gone, which finish() reports.
void OutputCommits::request_sync() const
{
    const std::vector<int> volumes = folder_.volumes();
    std::span<const int> left(volumes);
    do {
        const auto now = left.first(std::min(left.size(), max_descriptors));
        left = left.subspan(now.size());
        static_cast<void>(send_record(socket_.get(), SyncRequest{left.empty() ? 0 : 1}, now));
    } while (!left.empty());
}

Status OutputCommits::finish()
{
    if (syncing_.empty()) {
        return {};
    }
    const auto reply = receive_record<SyncReply>(socket_.get());
    if (reply && reply->error_number == 0) {
        return rename_synced();
    }
    discard_all();
    return reply ? folder_.sync_error(reply->error_number)
                 : not_synced("was ended " + words_of_end(process_.end()));
}

// What has not been synced gets no name. Nor do those that wait: the system reports a failure once,
// and a second attempt would succeed although the data are lost.
void OutputCommits::discard_all()
{
    syncing_.clear();
    waiting_.clear();
}

Status OutputCommits::rename_synced()
{
    for (WholeOutput &whole : std::exchange(syncing_, {})) {
        const Result<Placement> placed = whole.output.commit(whole.rule);
        if (!placed.ok() && placed.error().kind != ErrorKind::usage) {
            return placed.error();
        }
        if (!placed.ok()) {
            record_failure(whole, FileStatus::name, placed.error());
        } else if (placed.value() == Placement::placed) {
            listener_.placed(whole.file.output);
            whole.entry->finish(whole.outcome.status, std::move(whole.line),
                                std::move(whole.file.output));
        } else {
            const std::string path = whole.output.path();
            record_failure(whole, FileStatus::kept,
                           placed.value() == Placement::kept ? kept_file(path) : kept_input(path));
        }
    }
    return {};
}

// What was found out about the file holds all the same.
void OutputCommits::record_failure(WholeOutput &whole, FileStatus status, const Error &error) const
{
    Outcome &outcome = whole.outcome;
    outcome.status = status;
    outcome.set_error(error);
    outcome.has_counts = 0;
    outcome.losses = {};
    whole.entry->finish(status, record_line(whole.file, recorded_, outcome));
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
