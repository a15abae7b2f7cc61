#include "pfsdoc/byte_source.h"

#include "lib/base/descriptor.h"
#include "lib/base/scratch_file.h"
#include "lib/base/transfers.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace pfsdoc {

namespace {

constexpr std::size_t copy_size = 65536;

std::string reason(int error_number)
{
    return std::strerror(error_number);
}

// What a person can do about a system error on an input.
std::string input_remedy(int error_number)
{
    switch (error_number) {
    case ENOENT:
    case ENOTDIR: return "check the name";
    case EACCES:
    case EPERM: return "ask for the right to read it";
    case EIO: return "the disk may be damaged: copy the file elsewhere and try the copy";
    default: return "check that it is a readable file";
    }
}

Error unreadable(int error_number)
{
    return {ErrorKind::input, "cannot be read: " + reason(error_number),
            input_remedy(error_number)};
}

Error not_spooled(int error_number)
{
    return {ErrorKind::input, "cannot be copied to a temporary file: " + reason(error_number),
            "free some space there, or name another directory in the environment variable TMPDIR"};
}

// Copies all that `from` still has to give; the number of bytes.
Result<uint64_t> copy_to(int to, int from, uint64_t limit)
{
    std::array<char, copy_size> buffer;
    for (uint64_t total = 0;;) {
        const ssize_t count = base::read_some(from, buffer.data(), buffer.size());
        if (count <= 0) {
            return count == 0 ? Result<uint64_t>(total) : unreadable(errno);
        }
        total += static_cast<uint64_t>(count);
        if (total >= limit) {
            return too_large();
        }
        if (!base::write_all(to, {buffer.data(), static_cast<std::size_t>(count)})) {
            return not_spooled(errno);
        }
    }
}

using SourceResult = Result<std::unique_ptr<ByteSource>>;

SourceResult positioned_source(base::Descriptor descriptor, uint64_t size, uint64_t limit)
{
    if (size >= limit) {
        return too_large();
    }
    std::unique_ptr<ByteSource> source =
        std::make_unique<DescriptorSource>(descriptor.release(), static_cast<uint32_t>(size));
    return source;
}

SourceResult spooled_source(const base::Descriptor &descriptor, uint64_t limit)
{
    base::Descriptor spool(base::open_scratch_file());
    if (!spool.is_open()) {
        return not_spooled(errno);
    }
    const Result<uint64_t> size = copy_to(spool.get(), descriptor.get(), limit);
    if (!size.ok()) {
        return size.error();
    }
    return positioned_source(std::move(spool), size.value(), limit);
}

} // namespace

Error too_large()
{
    return {ErrorKind::limit, "is 4 GiB or larger, which no document of these kinds is",
            "check that it is the right file"};
}

std::optional<uint32_t> MemorySource::read_at(uint32_t position, std::span<uint8_t> destination)
{
    if (position >= bytes_.size()) {
        return 0;
    }
    const std::size_t count = std::min(destination.size(), bytes_.size() - position);
    std::memcpy(destination.data(), bytes_.data() + position, count);
    return static_cast<uint32_t>(count);
}

DescriptorSource::~DescriptorSource()
{
    ::close(descriptor_);
}

std::optional<uint32_t> DescriptorSource::read_at(uint32_t position, std::span<uint8_t> destination)
{
    const std::optional<std::size_t> count =
        base::read_full_at(descriptor_, destination.data(), destination.size(), position);
    if (!count) {
        error_number_ = errno;
        return std::nullopt;
    }
    return static_cast<uint32_t>(*count);
}

Status DescriptorSource::failure() const
{
    return error_number_ == 0 ? Status() : unreadable(error_number_);
}

SourceResult source_of(int descriptor, uint64_t limit)
{
    base::Descriptor owned(descriptor);
    struct stat status {};
    if (::fstat(descriptor, &status) != 0) {
        return unreadable(errno);
    }
    if (S_ISDIR(status.st_mode)) {
        return Error{ErrorKind::input, "is a directory", "name the files in it"};
    }
    // Standard input may stand inside its file: the document is then what is left of it.
    if (S_ISREG(status.st_mode) && ::lseek(descriptor, 0, SEEK_CUR) == 0) {
        return positioned_source(std::move(owned), static_cast<uint64_t>(status.st_size), limit);
    }
    return spooled_source(owned, limit);
}

SourceResult open_source(const std::string &path)
{
    const bool is_standard_input = path == "-";
    const int descriptor = is_standard_input ? ::fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, 0)
                                             : ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (descriptor < 0) {
        return unreadable(errno);
    }
    return source_of(descriptor);
}

} // namespace pfsdoc
