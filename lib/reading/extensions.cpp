// Usual extensions are
//
//   PFS: WRITE             pfs, or none
//   Professional Write     pw, or none, or one of the writer's own: LETTER.12
//   First Choice           doc
//   IBM Writing Assistant  none
//
// So an extension that is not in the table means nothing; one that is belongs to another
// format. "doc" is First Choice's own and later became that of another program: it fits
// First Choice, and no other kind here.
#include "pfsdoc/extensions.h"

#include "lib/base/printable.h"

#include <algorithm>
#include <array>
#include <optional>

namespace pfsdoc {

namespace {

struct Extension {
    std::string_view extension;
    std::string_view format;
    // The kinds that it is usual for; none for formats of others.
    std::array<std::optional<DocumentKind>, 2> kinds;
};

constexpr std::array<Extension, 26> extensions = {{
    {"pfs", "PFS: WRITE", {DocumentKind::write_a, DocumentKind::write_b}},
    {"pw",
     "Professional Write",
     {DocumentKind::professional_write_1, DocumentKind::professional_write_2}},
    {"doc",
     "PFS: First Choice and Microsoft Word",
     {DocumentKind::first_choice_2, DocumentKind::first_choice_3}},
    {"docx", "Microsoft Word", {}},
    {"rtf", "Rich Text Format", {}},
    {"odt", "OpenDocument", {}},
    {"wpd", "WordPerfect", {}},
    {"wps", "Microsoft Works", {}},
    {"txt", "plain text", {}},
    {"md", "Markdown", {}},
    {"htm", "HTML", {}},
    {"html", "HTML", {}},
    {"xml", "XML", {}},
    {"json", "JSON", {}},
    {"csv", "comma-separated values", {}},
    {"pdf", "PDF", {}},
    {"ps", "PostScript", {}},
    {"xls", "Microsoft Excel", {}},
    {"wk1", "Lotus 1-2-3", {}},
    {"dbf", "dBASE", {}},
    {"gif", "GIF", {}},
    {"jpg", "JPEG", {}},
    {"png", "PNG", {}},
    {"zip", "ZIP", {}},
    {"exe", "programs", {}},
    {"com", "programs", {}},
}};

char lower_case(char letter)
{
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

// Without its dot, in lower case; empty where there is none.
std::string extension_of(std::string_view file_name)
{
    const std::string_view name = base::base_name(file_name);
    const std::size_t dot = name.rfind('.');
    if (dot == std::string_view::npos || dot == 0) {
        return {};
    }
    std::string extension(name.substr(dot + 1));
    std::transform(extension.begin(), extension.end(), extension.begin(), lower_case);
    return extension;
}

} // namespace

std::string extension_mismatch(std::string_view file_name, DocumentKind kind)
{
    const std::string extension = extension_of(file_name);
    for (const Extension &entry : extensions) {
        if (entry.extension == extension &&
            std::find(entry.kinds.begin(), entry.kinds.end(), kind) == entry.kinds.end()) {
            return "its extension ." + extension + " is usual for " + std::string(entry.format);
        }
    }
    return {};
}

} // namespace pfsdoc
