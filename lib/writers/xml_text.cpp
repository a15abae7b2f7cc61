#include "lib/writers/xml_text.h"

#include "lib/base/printable.h"

namespace pfsdoc::writers {

void append_xml_text(std::string &xml, std::string_view bytes)
{
    for (const char byte : base::printable(bytes)) {
        const std::string_view entity = xml_entity(byte);
        if (entity.empty()) {
            xml.push_back(byte);
        } else {
            xml.append(entity);
        }
    }
}

} // namespace pfsdoc::writers
