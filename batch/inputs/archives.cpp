#include "batch/inputs/archives.h"

#include "batch/inputs/member_store.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>
#include <utility>

namespace pfsdoc::batch {

namespace {

Error too_large(uint64_t max_input)
{
    return {ErrorKind::limit, "has more than the " + std::to_string(max_input) + " bytes allowed",
            "allow more with --max-input"};
}

Error no_reader(int error_number)
{
    return {ErrorKind::internal,
            std::string("no process to read it can be started: ") + std::strerror(error_number),
            "end other programs"};
}

Error error_of_member(ArchiveOutcome outcome, const InputOptions &options)
{
    switch (outcome) {
    case ArchiveOutcome::link:
        return {ErrorKind::input, "is a link inside an archive", "unpack the archive"};
    case ArchiveOutcome::special:
        return {ErrorKind::input, "is a device or a pipe inside an archive", ""};
    case ArchiveOutcome::encrypted:
        return {ErrorKind::input, "is encrypted", "unpack the archive with its password"};
    case ArchiveOutcome::too_large: return too_large(options.max_input);
    default: return {ErrorKind::damaged, "is damaged inside its archive", "get the archive again"};
    }
}

Error error_of_archive(ArchiveOutcome outcome, const InputOptions &options)
{
    switch (outcome) {
    case ArchiveOutcome::not_an_archive:
        return {ErrorKind::input, "is no zip or tar archive, though its name says so",
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
    case ArchiveOutcome::reader_ended:
        return {ErrorKind::damaged, "made its reader end; the rest is not read", "unpack it"};
    default:
        return {ErrorKind::damaged, "is a damaged archive; the rest is not read",
                "get the archive again"};
    }
}

} // namespace

ArchiveMembers::ArchiveMembers(const OpenFile &archive, std::string name,
                               const InputOptions &options, NameSet &names, ForkServer &server)
    : name_(std::move(name)), options_(options), names_(names), server_(server)
{
    start(archive);
}

ArchiveMembers::~ArchiveMembers()
{
    stop();
}

void ArchiveMembers::start(const OpenFile &archive)
{
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0) {
        error_ = no_reader(errno);
        return;
    }
    messages_ = OpenFile(ends[0]);
    const OpenFile output(ends[1]);
    const std::array<int, 2> descriptors = {archive.get(), output.get()};
    const Result<pid_t> reader = server_.fork(ProcessRole::archive_reader, descriptors);
    if (!reader.ok()) {
        error_ = reader.error();
        return;
    }
    reader_ = reader.value();
}

void ArchiveMembers::stop()
{
    messages_ = OpenFile();
    if (reader_ > 0) {
        server_.end(std::exchange(reader_, -1));
    }
}

std::optional<BatchInput> ArchiveMembers::end(ArchiveOutcome outcome)
{
    stop();
    if (outcome == ArchiveOutcome::whole) {
        return std::nullopt;
    }
    return BatchInput{name_, OpenFile(), 0, error_of_archive(outcome, options_)};
}

std::optional<BatchInput> ArchiveMembers::member(const std::string &path)
{
    MemberStore store;
    for (;;) {
        const std::optional<Message> message = receive_message(messages_.get());
        const bool is_content = message && message->kind == MessageKind::bytes;
        if (is_content && bytes_ + message->bytes.size() > options_.max_archive) {
            return end(ArchiveOutcome::too_many_bytes);
        }
        if (is_content && store.size() + message->bytes.size() <= options_.max_input) {
            store.write(message->bytes);
            bytes_ += message->bytes.size();
            continue;
        }
        if (!message || message->kind != MessageKind::member_end) {
            return end(ArchiveOutcome::reader_ended);
        }
        std::string name =
            names_.unique(below(name_, safe_name(path, Separators::slash_and_backslash)));
        if (message->outcome != ArchiveOutcome::whole) {
            return BatchInput{std::move(name), OpenFile(), 0,
                              error_of_member(message->outcome, options_)};
        }
        Result<OpenFile> file = store.take();
        if (!file.ok()) {
            return BatchInput{std::move(name), OpenFile(), 0, file.error()};
        }
        return BatchInput{std::move(name), std::move(file.value()), store.size(), std::nullopt};
    }
}

std::optional<BatchInput> ArchiveMembers::next()
{
    if (error_) {
        return BatchInput{name_, OpenFile(), 0, std::exchange(error_, std::nullopt)};
    }
    if (reader_ < 0) {
        return std::nullopt;
    }
    const std::optional<Message> message = receive_message(messages_.get());
    if (message && message->kind == MessageKind::archive_end) {
        return end(message->outcome);
    }
    if (!message || message->kind != MessageKind::member) {
        return end(ArchiveOutcome::reader_ended);
    }
    if (++members_ > most_members) {
        return end(ArchiveOutcome::too_many_members);
    }
    return member(message->bytes);
}

} // namespace pfsdoc::batch
