#include "pfsdoc/paragraph_text.h"

#include <string_view>

namespace pfsdoc {

namespace {

// To the code page a tab is a graphic character, so it is taken out first.
void append(std::string &utf8, std::string_view bytes, const CodePage &code_page)
{
    std::size_t tab = bytes.find('\t');
    while (tab != std::string_view::npos) {
        code_page.append_utf8(utf8, bytes.substr(0, tab));
        utf8 += '\t';
        bytes.remove_prefix(tab + 1);
        tab = bytes.find('\t');
    }
    code_page.append_utf8(utf8, bytes);
}

} // namespace

std::string plain_text(const Paragraph &paragraph, const CodePage &code_page)
{
    std::string utf8;
    utf8.reserve(paragraph.bytes.size());
    for (std::size_t index = 0; index < paragraph.pieces.size(); ++index) {
        if (paragraph.pieces[index].kind == PieceKind::text) {
            append(utf8, paragraph.piece_bytes(index), code_page);
        }
    }
    return utf8;
}

} // namespace pfsdoc
