#include "batch/trusted/archives.h"

#include "lib/base/spill_store.h"
#include "pfsdoc/reading_stopped.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <unistd.h>
#include <utility>

namespace pfsdoc::batch {

namespace {

// What a reader earns: far less than an honest one needs.
constexpr std::chrono::microseconds time_for_byte{1};
constexpr std::chrono::milliseconds time_for_message{10};

Error too_large(uint64_t max_input)
{
    return {ErrorKind::limit, "has more than the " + std::to_string(max_input) + " bytes allowed",
            "allow more with --max-input"};
}

Error no_reader(int error_number)
{
    return {ErrorKind::internal,
            std::string("no process to read it can be started: ") + std::strerror(error_number),
            "close other programs"};
}

Error lack_of_memory()
{
    return {ErrorKind::limit, "needs more memory to unpack than the limit",
            "allow more with --max-memory"};
}

Error error_of_member(ArchiveOutcome outcome, const InputOptions &options)
{
    switch (outcome) {
    case ArchiveOutcome::link:
        return {ErrorKind::not_a_document, "is a link inside an archive", "unpack the archive"};
    case ArchiveOutcome::special:
        return {ErrorKind::not_a_document, "is a device or a pipe inside an archive", ""};
    case ArchiveOutcome::encrypted:
        return {ErrorKind::input, "is encrypted", "unpack the archive with its password"};
    case ArchiveOutcome::too_large: return too_large(options.max_input);
    case ArchiveOutcome::repeated:
        return {ErrorKind::damaged, "has the bytes of another file of its archive",
                "see whether that one is all there is, or get the archive again"};
    case ArchiveOutcome::memory: return lack_of_memory();
    default: return {ErrorKind::damaged, "is damaged inside its archive", "get the archive again"};
    }
}

std::string files_read(uint64_t members)
{
    return members == 0   ? "; nothing in it was read"
           : members == 1 ? " behind its first file"
                          : " behind its first " + std::to_string(members) + " files";
}

// The members are those that came whole.
Error error_of_archive(ArchiveOutcome outcome, uint64_t members, const InputOptions &options)
{
    switch (outcome) {
    case ArchiveOutcome::not_an_archive:
        return {ErrorKind::input, "is not a zip or tar archive, despite its name",
                "give it another ending to have it read as a file"};
    case ArchiveOutcome::too_many_members:
        return {ErrorKind::limit,
                "has more than " + std::to_string(most_members) + " members; the rest is not read",
                "unpack it"};
    case ArchiveOutcome::too_many_bytes:
        return {ErrorKind::limit,
                "unpacks to more than " + std::to_string(options.max_archive) +
                    " bytes; the rest is not read",
                "unpack it"};
    case ArchiveOutcome::no_sandbox:
        return {ErrorKind::internal, "cannot be read: there is no sandbox to do it in",
                "allow reading without one"};
    case ArchiveOutcome::memory: return lack_of_memory();
    case ArchiveOutcome::no_progress:
        return {ErrorKind::limit, "takes too long to unpack; the rest is not read",
                "allow more with --max-time"};
    case ArchiveOutcome::reader_ended:
        return {ErrorKind::damaged, "made its reader end" + files_read(members), "unpack it"};
    case ArchiveOutcome::whole:
        return {ErrorKind::not_a_document, "is an archive without a file in it", ""};
    default:
        return {ErrorKind::damaged, "is a damaged archive, and breaks off" + files_read(members),
                "get the archive again"};
    }
}

Error cannot_be_unpacked(int error_number)
{
    return {ErrorKind::input, std::string("cannot be unpacked: ") + std::strerror(error_number),
            "free some space, or set TMPDIR to a folder with more of it"};
}

// The bytes of a member. What comes after a failure is not kept: the member is read to its end all
// the same, and the next one with it.
class MemberBytes {
public:
    void write(std::string_view bytes)
    {
        size_ += bytes.size();
        try {
            if (!fault_) {
                store_.write(bytes);
            }
        } catch (const ReadingStopped &failure) {
            fault_ = failure.error();
        }
    }
    uint64_t size() const
    {
        return size_;
    }
    // All of them, positioned at their start.
    Result<base::Descriptor> take()
    {
        try {
            return fault_ ? Result<base::Descriptor>(*fault_) : store_.take();
        } catch (const ReadingStopped &failure) {
            return failure.error();
        }
    }

private:
    base::SpillStore store_{cannot_be_unpacked};
    uint64_t size_ = 0;
    std::optional<Error> fault_;
};

} // namespace

ArchiveMembers::ArchiveMembers(const base::Descriptor &archive, std::string name,
                               std::string source, const InputOptions &options, NameSet &names)
    : name_(std::move(name)), source_(std::move(source)), options_(options), names_(names)
{
    start(archive);
}

ArchiveMembers::~ArchiveMembers()
{
    stop();
}

void ArchiveMembers::start(const base::Descriptor &archive)
{
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0) {
        error_ = no_reader(errno);
        return;
    }
    messages_ = base::Descriptor(ends[0]);
    const base::Descriptor output(ends[1]);
    Result<ChildProcess> reader = options_.start_archive_reader(archive.get(), output.get());
    if (!reader.ok()) {
        error_ = reader.error();
        return;
    }
    reader_ = std::move(reader.value());
    patience_ = options_.max_time;
}

// Only time in which the reader has nothing to say is held against it, not what the run does
// meanwhile.
bool ArchiveMembers::wait(int descriptor)
{
    pollfd polled{descriptor, POLLIN, 0};
    if (::poll(&polled, 1, 0) > 0) {
        return options_.wait(descriptor, Clock::time_point::max());
    }
    const Clock::time_point begin = Clock::now();
    const bool is_readable = options_.wait(descriptor, begin + patience_);
    patience_ -= Clock::now() - begin;
    return is_readable;
}

// Whoever sends little at a time gets no more time for it than there is in it.
std::optional<Message> ArchiveMembers::receive()
{
    std::optional<Message> message =
        receive_message(messages_.get(), [this](int descriptor) { return wait(descriptor); });
    if (message) {
        const Clock::duration earned =
            time_for_message + time_for_byte * static_cast<Clock::rep>(message->bytes.size());
        patience_ = std::min<Clock::duration>(patience_ + earned, options_.max_time);
    }
    return message;
}

void ArchiveMembers::stop()
{
    messages_ = base::Descriptor();
    reader_.end();
}

std::optional<BatchInput> ArchiveMembers::end(ArchiveOutcome outcome)
{
    stop();
    if (outcome == ArchiveOutcome::whole && members_ > 0) {
        return std::nullopt;
    }
    BatchInput input = failed_input(name_, source_, error_of_archive(outcome, whole_, options_));
    if (outcome == ArchiveOutcome::reader_ended) {
        input.status = FileStatus::crashed;
    }
    return input;
}

// What came that should not have, or why nothing came.
ArchiveOutcome ArchiveMembers::fault_of(const std::optional<Message> &message) const
{
    return !message && patience_ <= Clock::duration::zero() ? ArchiveOutcome::no_progress
                                                            : ArchiveOutcome::reader_ended;
}

std::optional<BatchInput> ArchiveMembers::member(const std::string &path)
{
    MemberBytes content;
    for (;;) {
        const std::optional<Message> message = receive();
        const bool is_content = message && message->kind == MessageKind::bytes;
        if (is_content && bytes_ + message->bytes.size() > options_.max_archive) {
            return end(ArchiveOutcome::too_many_bytes);
        }
        if (is_content && content.size() + message->bytes.size() <= options_.max_input) {
            content.write(message->bytes);
            bytes_ += message->bytes.size();
            continue;
        }
        if (!message || message->kind != MessageKind::member_end) {
            return end(fault_of(message));
        }
        std::string name =
            names_.unique(below(name_, safe_name(path, Separators::slash_and_backslash)));
        std::string source = source_ + "!/" + path;
        if (message->outcome != ArchiveOutcome::whole) {
            return failed_input(std::move(name), std::move(source),
                                error_of_member(message->outcome, options_));
        }
        ++whole_;
        Result<base::Descriptor> file = content.take();
        if (!file.ok()) {
            return failed_input(std::move(name), std::move(source), file.error());
        }
        return BatchInput{std::move(name), std::move(source), std::move(file.value()),
                          content.size()};
    }
}

std::optional<BatchInput> ArchiveMembers::next()
{
    if (error_) {
        return failed_input(name_, source_, *std::exchange(error_, std::nullopt));
    }
    if (reader_.id() == 0) {
        return std::nullopt;
    }
    const std::optional<Message> message = receive();
    if (message && message->kind == MessageKind::archive_end) {
        return end(message->outcome);
    }
    if (!message || message->kind != MessageKind::member) {
        return end(fault_of(message));
    }
    if (++members_ > most_members) {
        return end(ArchiveOutcome::too_many_members);
    }
    return member(message->bytes);
}

} // namespace pfsdoc::batch
