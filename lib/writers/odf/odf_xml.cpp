#include "lib/writers/odf/odf_xml.h"

#include <algorithm>
#include <cstddef>

namespace pfsdoc::writers {

namespace {

constexpr std::string_view declaration = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
constexpr std::size_t buffer_bytes = 1U << 16U;
// Properties that generators exchange among themselves, and are no attributes.
constexpr std::string_view private_prefix = "librevenge:";

std::string_view entity(char special)
{
    switch (special) {
    case '<': return "&lt;";
    case '>': return "&gt;";
    case '&': return "&amp;";
    default: return "&quot;";
    }
}

} // namespace

std::string_view NewValues::value_of(std::string_view name, std::string_view value) const
{
    if (name != attribute) {
        return value;
    }
    const auto found = values.find(value);
    return found != values.end() ? found->second : value;
}

XmlStream::XmlStream(Output &output) : output_(output) {}

void XmlStream::startDocument()
{
    buffer_ = declaration;
}

void XmlStream::endDocument()
{
    end_tag();
    buffer_.push_back('\n');
    flush();
}

void XmlStream::flush()
{
    end_tag();
    output_.write(buffer_);
    buffer_.clear();
}

void XmlStream::startElement(const char *name, const librevenge::RVNGPropertyList &attributes)
{
    start_element(name, attributes, {});
}

void XmlStream::start_element(const char *name, const librevenge::RVNGPropertyList &attributes,
                              const NewValues &changed)
{
    end_tag();
    buffer_.append("<").append(name);
    librevenge::RVNGPropertyList::Iter attribute(attributes);
    for (attribute.rewind(); attribute.next();) {
        const std::string_view key = attribute.key();
        if (attribute.child() != nullptr || key.starts_with(private_prefix)) {
            continue;
        }
        append_attribute(key, changed.value_of(key, attribute()->getStr().cstr()));
    }
    tag_open_ = true;
}

void XmlStream::append_attribute(std::string_view name, std::string_view value)
{
    buffer_.append(" ").append(name).append("=\"");
    append_escaped(value);
    buffer_.push_back('"');
}

void XmlStream::endElement(const char *name)
{
    if (tag_open_) {
        buffer_.append("/>");
        tag_open_ = false;
    } else {
        buffer_.append("</").append(name).append(">");
    }
    write_if_full();
}

void XmlStream::characters(const librevenge::RVNGString &text)
{
    end_tag();
    append_escaped(text.cstr());
    write_if_full();
}

void XmlStream::end_tag()
{
    if (tag_open_) {
        buffer_.push_back('>');
        tag_open_ = false;
    }
}

void XmlStream::append_escaped(std::string_view text)
{
    while (!text.empty()) {
        const std::size_t plain = std::min(text.find_first_of("<>&\""), text.size());
        buffer_.append(text.substr(0, plain));
        text.remove_prefix(plain);
        if (!text.empty()) {
            buffer_.append(entity(text.front()));
            text.remove_prefix(1);
        }
    }
}

void XmlStream::write_if_full()
{
    if (buffer_.size() >= buffer_bytes) {
        output_.write(buffer_);
        buffer_.clear();
    }
}

} // namespace pfsdoc::writers
