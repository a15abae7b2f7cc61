#include "batch/descriptor_output.h"

#include <cerrno>
#include <cstring>
#include <unistd.h>

namespace pfsdoc::batch {

namespace {

constexpr std::size_t buffer_size = 65536;

} // namespace

DescriptorOutput::DescriptorOutput(int descriptor, uint64_t max_bytes)
    : descriptor_(descriptor), max_bytes_(max_bytes)
{
    buffer_.reserve(buffer_size);
}

void DescriptorOutput::write(std::string_view bytes)
{
    if (failed()) {
        return;
    }
    over_limit_ = bytes.size() > max_bytes_ - size_;
    const std::string_view part = bytes.substr(0, max_bytes_ - size_);
    size_ += part.size();
    buffer_.append(part);
    if (buffer_.size() >= buffer_size) {
        flush();
    }
}

void DescriptorOutput::flush()
{
    sum_.update(buffer_);
    std::string_view rest = buffer_;
    while (!rest.empty() && system_error_ == 0) {
        const ssize_t count = ::write(descriptor_, rest.data(), rest.size());
        if (count >= 0) {
            rest.remove_prefix(static_cast<std::size_t>(count));
        } else if (errno != EINTR) {
            system_error_ = errno;
        }
    }
    buffer_.clear();
}

Status DescriptorOutput::failure() const
{
    if (system_error_ != 0) {
        return Error{ErrorKind::output,
                     std::string("the output cannot be written: ") + std::strerror(system_error_),
                     ""};
    }
    if (over_limit_) {
        return Error{ErrorKind::limit,
                     "gives more output than the " + std::to_string(max_bytes_) +
                         " bytes that are allowed",
                     "allow more with --max-output"};
    }
    return {};
}

} // namespace pfsdoc::batch
