#include "lib/reading/byte_window.h"

namespace pfsdoc::reading {

// A little before the position, so that a look back stays within the window.
void ByteWindow::move_to(uint32_t position)
{
    begin_ = position - position % (window_size / 2);
    count_ = source_.read_at(begin_, bytes_).value_or(0);
}

} // namespace pfsdoc::reading
