#include "pfsdoc/byte_source.h"

#include "lib/base/scratch_file.h"

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

// A descriptor that is closed unless it is handed on.
class Descriptor {
public:
    explicit Descriptor(int value) : value_(value) {}
    ~Descriptor()
    {
        if (value_ >= 0) {
            ::close(value_);
        }
    }
    Descriptor(const Descriptor &) = delete;
    Descriptor &operator=(const Descriptor &) = delete;
    int get() const
    {
        return value_;
    }
    int release()
    {
        return std::exchange(value_, -1);
    }

private:
    int value_;
};

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
            "make room there, or name another directory in the environment variable TMPDIR"};
}

ssize_t read_some(int descriptor, std::span<uint8_t> destination)
{
    ssize_t count = 0;
    do {
        count = ::read(descriptor, destination.data(), destination.size());
    } while (count < 0 && errno == EINTR);
    return count;
}

bool write_all(int descriptor, std::span<const uint8_t> bytes)
{
    while (!bytes.empty()) {
        const ssize_t count = ::write(descriptor, bytes.data(), bytes.size());
        if (count < 0 && errno != EINTR) {
            return false;
        }
        bytes = bytes.subspan(static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
    }
    return true;
}

// Copies all that `from` still has to give; the number of bytes.
Result<uint64_t> copy_to(int to, int from, uint64_t limit)
{
    std::array<uint8_t, copy_size> buffer;
    for (uint64_t total = 0;;) {
        const ssize_t count = read_some(from, buffer);
        if (count <= 0) {
            return count == 0 ? Result<uint64_t>(total) : unreadable(errno);
        }
        total += static_cast<uint64_t>(count);
        if (total >= limit) {
            return too_large();
        }
        if (!write_all(to, std::span(buffer).first(static_cast<std::size_t>(count)))) {
            return not_spooled(errno);
        }
    }
}

using SourceResult = Result<std::unique_ptr<ByteSource>>;

SourceResult positioned_source(Descriptor &descriptor, uint64_t size, uint64_t limit)
{
    if (size >= limit) {
        return too_large();
    }
    std::unique_ptr<ByteSource> source =
        std::make_unique<DescriptorSource>(descriptor.release(), static_cast<uint32_t>(size));
    return source;
}

SourceResult spooled_source(Descriptor &descriptor, uint64_t limit)
{
    Descriptor spool(base::open_scratch_file());
    if (spool.get() < 0) {
        return not_spooled(errno);
    }
    const Result<uint64_t> size = copy_to(spool.get(), descriptor.get(), limit);
    if (!size.ok()) {
        return size.error();
    }
    return positioned_source(spool, size.value(), limit);
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
    std::size_t total = 0;
    while (total < destination.size()) {
        const auto rest = destination.subspan(total);
        const ssize_t count = ::pread(descriptor_, rest.data(), rest.size(),
                                      static_cast<off_t>(position + uint64_t{total}));
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count < 0) {
            error_number_ = errno;
            return std::nullopt;
        }
        if (count == 0) {
            break;
        }
        total += static_cast<std::size_t>(count);
    }
    return static_cast<uint32_t>(total);
}

Status DescriptorSource::failure() const
{
    return error_number_ == 0 ? Status() : unreadable(error_number_);
}

SourceResult source_of(int descriptor, uint64_t limit)
{
    Descriptor owned(descriptor);
    struct stat status {};
    if (::fstat(descriptor, &status) != 0) {
        return unreadable(errno);
    }
    if (S_ISDIR(status.st_mode)) {
        return Error{ErrorKind::input, "is a directory", "name the files in it"};
    }
    // Standard input may stand inside its file: the document is then what is left of it.
    if (S_ISREG(status.st_mode) && ::lseek(descriptor, 0, SEEK_CUR) == 0) {
        return positioned_source(owned, static_cast<uint64_t>(status.st_size), limit);
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
