#include "batch/wire/records.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <sys/socket.h>
#include <sys/uio.h>
#include <unistd.h>

namespace pfsdoc::batch {

namespace {

struct alignas(cmsghdr) ControlSpace {
    std::array<char, CMSG_SPACE(max_descriptors * sizeof(int))> bytes{};
};

void attach(msghdr &message, ControlSpace &space, std::span<const int> descriptors)
{
    message.msg_control = space.bytes.data();
    message.msg_controllen = CMSG_SPACE(descriptors.size_bytes());
    cmsghdr *header = CMSG_FIRSTHDR(&message);
    header->cmsg_level = SOL_SOCKET;
    header->cmsg_type = SCM_RIGHTS;
    header->cmsg_len = CMSG_LEN(descriptors.size_bytes());
    std::memcpy(CMSG_DATA(header), descriptors.data(), descriptors.size_bytes());
}

std::vector<int> attached(const msghdr &message)
{
    const cmsghdr *header = CMSG_FIRSTHDR(&message);
    if (header == nullptr || header->cmsg_level != SOL_SOCKET || header->cmsg_type != SCM_RIGHTS) {
        return {};
    }
    std::vector<int> descriptors((header->cmsg_len - CMSG_LEN(0)) / sizeof(int));
    std::memcpy(descriptors.data(), CMSG_DATA(header), descriptors.size() * sizeof(int));
    return descriptors;
}

} // namespace

bool send_message(int socket, std::span<const std::byte> bytes, std::span<const int> descriptors)
{
    iovec part{const_cast<std::byte *>(bytes.data()), bytes.size()};
    msghdr message{};
    ControlSpace space;
    message.msg_iov = &part;
    message.msg_iovlen = 1;
    if (!descriptors.empty()) {
        attach(message, space, descriptors);
    }
    ssize_t sent = 0;
    do {
        sent = ::sendmsg(socket, &message, MSG_NOSIGNAL);
    } while (sent < 0 && errno == EINTR);
    return sent == static_cast<ssize_t>(bytes.size());
}

// Who wants no descriptors is given none: without room for them they are closed on arrival. A
// process that ends without reading all that it was sent resets the connection, and the system
// reports that once, before what the process had sent.
bool receive_message(int socket, std::span<std::byte> bytes, std::vector<int> *descriptors)
{
    iovec part{bytes.data(), bytes.size()};
    msghdr message{};
    ControlSpace space;
    message.msg_iov = &part;
    message.msg_iovlen = 1;
    if (descriptors != nullptr) {
        message.msg_control = space.bytes.data();
        message.msg_controllen = space.bytes.size();
    }
    ssize_t count = 0;
    do {
        count = ::recvmsg(socket, &message, MSG_CMSG_CLOEXEC);
    } while (count < 0 && (errno == EINTR || errno == ECONNRESET));
    if (count >= 0 && descriptors != nullptr) {
        *descriptors = attached(message);
    }
    return count == static_cast<ssize_t>(bytes.size()) && (message.msg_flags & MSG_TRUNC) == 0;
}

} // namespace pfsdoc::batch
