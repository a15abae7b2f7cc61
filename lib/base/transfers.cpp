#include "lib/base/transfers.h"

#include <cerrno>
#include <unistd.h>

namespace pfsdoc::base {

namespace {

template <typename Call> ssize_t uninterrupted(Call call)
{
    for (;;) {
        const ssize_t count = call();
        if (count >= 0 || errno != EINTR) {
            return count;
        }
    }
}

// `read` is given the rest of the destination and how much of it is full.
template <typename Read>
std::optional<std::size_t> fill(void *destination, std::size_t size, Read read)
{
    std::size_t full = 0;
    while (full < size) {
        const ssize_t count = read(static_cast<char *>(destination) + full, size - full, full);
        if (count < 0) {
            return std::nullopt;
        }
        if (count == 0) {
            break;
        }
        full += static_cast<std::size_t>(count);
    }
    return full;
}

// `write` is given the rest of the bytes and how many have been written.
template <typename Write> bool drain(std::string_view bytes, Write write)
{
    std::size_t written = 0;
    while (written < bytes.size()) {
        const std::string_view rest = bytes.substr(written);
        const ssize_t count = uninterrupted([&] { return write(rest, written); });
        if (count < 0) {
            return false;
        }
        written += static_cast<std::size_t>(count);
    }
    return true;
}

} // namespace

ssize_t read_some(int descriptor, void *destination, std::size_t size)
{
    return uninterrupted([&] { return ::read(descriptor, destination, size); });
}

ssize_t read_some_at(int descriptor, void *destination, std::size_t size, uint64_t offset)
{
    return uninterrupted(
        [&] { return ::pread(descriptor, destination, size, static_cast<off_t>(offset)); });
}

std::optional<std::size_t> read_full(int descriptor, void *destination, std::size_t size)
{
    return fill(destination, size, [&](char *rest, std::size_t rest_size, std::size_t) {
        return read_some(descriptor, rest, rest_size);
    });
}

std::optional<std::size_t> read_full_at(int descriptor, void *destination, std::size_t size,
                                        uint64_t offset)
{
    return fill(destination, size, [&](char *rest, std::size_t rest_size, std::size_t full) {
        return read_some_at(descriptor, rest, rest_size, offset + full);
    });
}

bool write_all(int descriptor, std::string_view bytes)
{
    return drain(bytes, [&](std::string_view rest, std::size_t) {
        return ::write(descriptor, rest.data(), rest.size());
    });
}

bool write_all_at(int descriptor, std::string_view bytes, uint64_t offset)
{
    return drain(bytes, [&](std::string_view rest, std::size_t written) {
        return ::pwrite(descriptor, rest.data(), rest.size(), static_cast<off_t>(offset + written));
    });
}

} // namespace pfsdoc::base
