#include "batch/inputs/archive_messages.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <unistd.h>

namespace pfsdoc::batch {

namespace {

bool receive(int descriptor, char *place, std::size_t length)
{
    while (length > 0) {
        const ssize_t count = ::read(descriptor, place, length);
        if (count == 0 || (count < 0 && errno != EINTR)) {
            return false;
        }
        if (count > 0) {
            place += count;
            length -= static_cast<std::size_t>(count);
        }
    }
    return true;
}

bool send(int descriptor, std::string_view bytes)
{
    while (!bytes.empty()) {
        const ssize_t count = ::write(descriptor, bytes.data(), bytes.size());
        if (count < 0 && errno != EINTR) {
            return false;
        }
        if (count > 0) {
            bytes.remove_prefix(static_cast<std::size_t>(count));
        }
    }
    return true;
}

bool send_head(int descriptor, MessageHead head)
{
    std::array<char, sizeof head> bytes{};
    std::memcpy(bytes.data(), &head, sizeof head);
    return send(descriptor, {bytes.data(), bytes.size()});
}

} // namespace

std::optional<Message> receive_message(int descriptor)
{
    std::array<char, sizeof(MessageHead)> bytes{};
    if (!receive(descriptor, bytes.data(), bytes.size())) {
        return std::nullopt;
    }
    MessageHead head{};
    std::memcpy(&head, bytes.data(), sizeof head);
    Message message{head.kind, ArchiveOutcome::whole, {}};
    switch (head.kind) {
    case MessageKind::member:
    case MessageKind::bytes:
        if (head.value > longest_message) {
            return std::nullopt;
        }
        message.bytes.resize(head.value);
        if (!receive(descriptor, message.bytes.data(), message.bytes.size())) {
            return std::nullopt;
        }
        return message;
    case MessageKind::member_end:
    case MessageKind::archive_end:
        if (head.value > static_cast<uint32_t>(ArchiveOutcome::reader_ended)) {
            return std::nullopt;
        }
        message.outcome = static_cast<ArchiveOutcome>(head.value);
        return message;
    }
    return std::nullopt;
}

bool send_bytes(int descriptor, MessageKind kind, std::string_view bytes)
{
    return send_head(descriptor, {kind, static_cast<uint32_t>(bytes.size())}) &&
           send(descriptor, bytes);
}

bool send_end(int descriptor, MessageKind kind, ArchiveOutcome outcome)
{
    return send_head(descriptor, {kind, static_cast<uint32_t>(outcome)});
}

} // namespace pfsdoc::batch
