#include "batch/wire/archive_messages.h"

#include "lib/base/transfers.h"

#include <array>
#include <cstring>

namespace pfsdoc::batch {

namespace {

using Wait = std::function<bool(int)>;

bool receive(int descriptor, const Wait &wait, char *bytes, std::size_t length)
{
    while (length > 0) {
        if (!wait(descriptor)) {
            return false;
        }
        const ssize_t count = base::read_some(descriptor, bytes, length);
        if (count <= 0) {
            return false;
        }
        bytes += count;
        length -= static_cast<std::size_t>(count);
    }
    return true;
}

bool send_head(int descriptor, MessageHead head)
{
    std::array<char, sizeof head> bytes{};
    std::memcpy(bytes.data(), &head, sizeof head);
    return base::write_all(descriptor, {bytes.data(), bytes.size()});
}

} // namespace

std::optional<Message> receive_message(int descriptor, const Wait &wait)
{
    std::array<char, sizeof(MessageHead)> bytes{};
    if (!receive(descriptor, wait, bytes.data(), bytes.size())) {
        return std::nullopt;
    }
    MessageHead head{};
    std::memcpy(&head, bytes.data(), sizeof head);
    Message message{head.kind, ArchiveOutcome::whole, {}};
    switch (head.kind) {
    case MessageKind::member:
    case MessageKind::bytes:
        if (head.value >
            (head.kind == MessageKind::member ? longest_member_name : longest_message)) {
            return std::nullopt;
        }
        message.bytes.resize(head.value);
        if (!receive(descriptor, wait, message.bytes.data(), message.bytes.size())) {
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
           base::write_all(descriptor, bytes);
}

bool send_end(int descriptor, MessageKind kind, ArchiveOutcome outcome)
{
    return send_head(descriptor, {kind, static_cast<uint32_t>(outcome)});
}

} // namespace pfsdoc::batch
