#include "lib/writers/odf/joined_xml.h"

#include <algorithm>
#include <charconv>
#include <utility>

namespace pfsdoc::writers {

namespace {

using librevenge::RVNGProperty;
using librevenge::RVNGPropertyList;

constexpr std::string_view body_element = "office:text";
constexpr std::string_view style_element = "style:style";
constexpr const char *style_name = "style:name";
constexpr std::string_view empty_name = " style:name=\"\"";
constexpr std::string_view paragraph_family = "paragraph";
constexpr std::string_view paragraph_style_name = "text:style-name";
// Behind it stands the number.
constexpr char name_prefix = 'S';

std::string value_of(const RVNGPropertyList &attributes, const char *name)
{
    const RVNGProperty *attribute = attributes[name];
    return attribute != nullptr ? attribute->getStr().cstr() : std::string();
}

// Those of headers and footers, and the ones that every document has, have other names.
bool is_body_style(std::string_view element, const RVNGPropertyList &attributes)
{
    if (element != style_element || value_of(attributes, "style:family") != paragraph_family) {
        return false;
    }
    const std::string name = value_of(attributes, style_name);
    return name.size() > 1 && name.front() == name_prefix &&
           name.find_first_not_of("0123456789", 1) == std::string::npos;
}

std::string name_of(uint64_t number)
{
    return name_prefix + std::to_string(number);
}

uint64_t number_of(std::string_view name)
{
    uint64_t number = 0;
    std::from_chars(name.data() + 1, name.data() + name.size(), number);
    return number;
}

} // namespace

void JoinedXml::begin_portion()
{
    ++portions_;
    before_styles_.clear();
    behind_styles_.clear();
    tail_.clear();
    part_ = Part::before_styles;
    new_names_ = {paragraph_style_name, {}};
    depth_ = 0;
    paragraphs_ = 0;
    if (remembered_bytes_ > most_remembered) {
        remembered_.clear();
        remembered_bytes_ = 0;
    }
}

void JoinedXml::startDocument()
{
    xml_.startDocument();
}

void JoinedXml::endDocument()
{
    xml_.endDocument();
}

void JoinedXml::startElement(const char *name, const RVNGPropertyList &attributes)
{
    if (depth_ == 1) {
        start_paragraph(name, attributes);
    } else if (is_body_style(name, attributes)) {
        begin_style(attributes);
    } else if (!is_left_out()) {
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
    if (part_ == Part::style && name == style_element) {
        end_style();
    }
}

void JoinedXml::characters(const librevenge::RVNGString &text)
{
    if (!is_left_out()) {
        xml_.characters(text);
    }
}

// ------------------------------------------------------------------------- styles -----

void JoinedXml::begin_style(const RVNGPropertyList &attributes)
{
    xml_.flush();
    part_ = Part::style;
    style_ = {
        value_of(attributes, style_name), attributes["style:master-page-name"] != nullptr, {}};
    const NewValues unnamed = {style_name, {{style_.portion_name, ""}}};
    xml_.start_element(style_element.data(), attributes, unnamed);
}

void JoinedXml::end_style()
{
    xml_.flush();
    part_ = Part::behind_styles;
    if (is_first_portion()) {
        add_style(number_of(style_.portion_name));
    } else if (!style_.begins_page) {
        const auto known = remembered_.find(style_.definition);
        const uint64_t number =
            known != remembered_.end() ? known->second : add_style(next_number_);
        new_names_.values.emplace(style_.portion_name, name_of(number));
    }
}

uint64_t JoinedXml::add_style(uint64_t number)
{
    const std::size_t size = style_.definition.size();
    const std::size_t name_at = style_.definition.find(empty_name) + empty_name.size() - 1;
    styles_.append(std::string(style_.definition).insert(name_at, name_of(number)));
    next_number_ = std::max(next_number_, number + 1);
    if (remembered_.emplace(std::move(style_.definition), number).second) {
        remembered_bytes_ += size;
    }
    return number;
}

// --------------------------------------------------------------------------- body -----

void JoinedXml::start_paragraph(const char *name, const RVNGPropertyList &attributes)
{
    ++paragraphs_;
    if (is_left_out()) {
        return;
    }
    if (part_ != Part::body) {
        xml_.flush();
        part_ = Part::body;
    }
    xml_.start_element(name, attributes, new_names_);
}

bool JoinedXml::is_left_out() const
{
    return !is_first_portion() && depth_ != 0 && paragraphs_ == 1;
}

void JoinedXml::write(std::string_view bytes)
{
    switch (part_) {
    case Part::before_styles: before_styles_.append(bytes); break;
    case Part::style: style_.definition.append(bytes); break;
    case Part::behind_styles: behind_styles_.append(bytes); break;
    case Part::body: body_.append(bytes); break;
    case Part::tail: tail_.append(bytes); break;
    }
}

uint64_t JoinedXml::size() const
{
    return before_styles_.size() + styles_.size() + behind_styles_.size() + body_.size() +
           tail_.size();
}

void JoinedXml::copy_to(Output &output) const
{
    output.write(before_styles_);
    styles_.copy_to(output);
    output.write(behind_styles_);
    body_.copy_to(output);
    output.write(tail_);
}

} // namespace pfsdoc::writers
