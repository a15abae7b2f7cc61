#include "joined_xml.h"

namespace pfsdoc {

namespace {

constexpr std::string_view body_element = "office:text";

} // namespace

void JoinedXml::begin_portion(std::size_t repeated_paragraphs)
{
    head_.clear();
    tail_.clear();
    part_ = Part::head;
    depth_ = 0;
    repeated_paragraphs_ = repeated_paragraphs;
    paragraphs_ = 0;
}

void JoinedXml::startDocument()
{
    xml_.startDocument();
}

void JoinedXml::endDocument()
{
    xml_.endDocument();
}

void JoinedXml::startElement(const char *name, const librevenge::RVNGPropertyList &attributes)
{
    if (depth_ == 1) {
        begin_paragraph();
    }
    if (!is_left_out()) {
        xml_.startElement(name, attributes);
    }
    depth_ += depth_ != 0 || name == body_element ? 1 : 0;
}

void JoinedXml::endElement(const char *name)
{
    depth_ -= depth_ != 0 ? 1 : 0;
    if (depth_ == 0 && part_ == Part::body) {
        xml_.flush();
        part_ = Part::tail;
    }
    if (!is_left_out()) {
        xml_.endElement(name);
    }
}

void JoinedXml::characters(const librevenge::RVNGString &text)
{
    if (!is_left_out()) {
        xml_.characters(text);
    }
}

void JoinedXml::begin_paragraph()
{
    ++paragraphs_;
    if (part_ == Part::head && paragraphs_ > repeated_paragraphs_) {
        xml_.flush();
        part_ = Part::body;
    }
}

// Paragraphs that are repeated stand before all others, so nothing of the body has been
// written while they last.
bool JoinedXml::is_left_out() const
{
    return part_ == Part::head && paragraphs_ != 0;
}

void JoinedXml::write(std::string_view bytes)
{
    switch (part_) {
    case Part::head: head_.append(bytes); break;
    case Part::body: body_.append(bytes); break;
    case Part::tail: tail_.append(bytes); break;
    }
}

void JoinedXml::copy_to(Output &output) const
{
    output.write(head_);
    body_.copy_to(output);
    output.write(tail_);
}

} // namespace pfsdoc
