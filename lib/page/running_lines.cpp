#include "lib/page/running_lines.h"

#include <utility>

namespace pfsdoc::page {

bool RunningLines::keep(Paragraph line)
{
    Kept &kept = kept_[block_ == BlockKind::header ? 0 : 1];
    const std::size_t bytes = line.bytes.size() + 1;
    if (kept.lines.size() == max_lines_ || bytes > max_bytes - kept.bytes) {
        return false;
    }
    kept.bytes += bytes;
    kept.lines.push_back(std::move(line));
    return true;
}

Paragraph without_page_breaks(Paragraph line)
{
    std::erase_if(line.pieces,
                  [](const Piece &piece) { return piece.kind == PieceKind::page_break; });
    return line;
}

} // namespace pfsdoc::page
