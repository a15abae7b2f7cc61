#include "lib/base/descriptor_output.h"

#include "lib/base/transfers.h"

#include <cerrno>
#include <cstring>
#include <utility>

namespace pfsdoc::base {

namespace {

constexpr std::size_t buffer_size = 65536;
// So much is worth a write of its own, and is not copied.
constexpr std::size_t least_unbuffered = buffer_size / 4;

std::string output_remedy(int error_number)
{
    switch (error_number) {
    case ENOSPC:
    case EDQUOT: return "make room, or write elsewhere with -o";
    case EPIPE: return "let the program that reads the output read all of it";
    case EACCES:
    case EPERM:
    case EROFS: return "write elsewhere with -o";
    case ENOENT:
    case ENOTDIR: return "make its directory first";
    default: return "check where the output goes";
    }
}

Error over_limit(uint64_t max_bytes)
{
    return {ErrorKind::limit,
            "would give more output than the " + std::to_string(max_bytes) + " bytes allowed",
            "allow more with --max-output"};
}

} // namespace

Error output_error(int error_number, const std::string &name)
{
    const std::string output = name.empty() ? "the output" : "the output " + name;
    return {ErrorKind::output, output + " cannot be written: " + std::strerror(error_number),
            output_remedy(error_number)};
}

DescriptorOutput::DescriptorOutput(int descriptor, uint64_t max_bytes, Observer observer)
    : descriptor_(descriptor), max_bytes_(max_bytes), observer_(std::move(observer))
{
    buffer_.reserve(buffer_size);
}

void DescriptorOutput::write(std::string_view bytes)
{
    if (failed()) {
        return;
    }
    const uint64_t allowed = max_bytes_ - size_;
    over_limit_ = bytes.size() > allowed;
    const std::string_view part =
        over_limit_ ? bytes.substr(0, static_cast<std::size_t>(allowed)) : bytes;
    size_ += part.size();
    if (part.size() >= least_unbuffered) {
        flush();
        hand_on(part);
        return;
    }
    buffer_.append(part);
    if (buffer_.size() >= buffer_size) {
        flush();
    }
}

void DescriptorOutput::flush()
{
    if (!buffer_.empty()) {
        hand_on(buffer_);
        buffer_.clear();
    }
}

void DescriptorOutput::hand_on(std::string_view bytes)
{
    if (observer_) {
        observer_(bytes);
    }
    if (error_number_ == 0 && !write_all(descriptor_, bytes)) {
        error_number_ = errno;
    }
}

Status DescriptorOutput::failure(const std::string &name) const
{
    if (error_number_ != 0) {
        return output_error(error_number_, name);
    }
    return over_limit_ ? Status(over_limit(max_bytes_)) : Status();
}

} // namespace pfsdoc::base
