#include "lib/writers/xml_text.h"

#include "lib/base/printable.h"

namespace pfsdoc::writers {

namespace {

constexpr std::string_view replacement = "\uFFFD";

bool begins_with_noncharacter(std::string_view utf8)
{
    return utf8.starts_with("\uFFFE") || utf8.starts_with("\uFFFF");
}

} // namespace

void append_xml_text(std::string &xml, std::string_view bytes)
{
    const std::string utf8 = base::printable(bytes);
    for (std::string_view rest = utf8; !rest.empty();) {
        if (begins_with_noncharacter(rest)) {
            xml.append(replacement);
            rest.remove_prefix(replacement.size());
            continue;
        }
        const std::string_view entity = xml_entity(rest.front());
        xml.append(entity.empty() ? rest.substr(0, 1) : entity);
        rest.remove_prefix(1);
    }
}

} // namespace pfsdoc::writers
