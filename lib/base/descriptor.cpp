#include "lib/base/descriptor.h"

#include <cerrno>
#include <unistd.h>

namespace pfsdoc::base {

Descriptor::~Descriptor()
{
    if (number_ >= 0) {
        const int error_number = errno;
        ::close(number_);
        errno = error_number;
    }
}

Descriptor &Descriptor::operator=(Descriptor &&other) noexcept
{
    const Descriptor old(std::exchange(number_, other.release()));
    return *this;
}

} // namespace pfsdoc::base
