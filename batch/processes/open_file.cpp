#include "batch/processes/open_file.h"

#include <unistd.h>
#include <utility>

namespace pfsdoc::batch {

OpenFile::~OpenFile()
{
    if (descriptor_ >= 0) {
        ::close(descriptor_);
    }
}

OpenFile &OpenFile::operator=(OpenFile &&other) noexcept
{
    OpenFile old(std::exchange(descriptor_, other.release()));
    return *this;
}

int OpenFile::release()
{
    return std::exchange(descriptor_, -1);
}

} // namespace pfsdoc::batch
