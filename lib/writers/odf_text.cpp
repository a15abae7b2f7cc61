#include "lib/writers/odf_text.h"

#include "lib/page/blank_bytes.h"
#include "lib/writers/xml_text.h"
#include "pfsdoc/attribute_names.h"

#include <algorithm>
#include <utility>

namespace pfsdoc::writers {

namespace {

constexpr std::size_t buffer_bytes = 65536;
// Bytes converted between two looks at the buffer's size.
constexpr std::size_t stretch_bytes = 4096;

constexpr AttributeSet underline = attribute_bit(AttributeCode::underline);

} // namespace

OdfText::OdfText(Output &output, OdfStyles &styles, const CodePage &code_page)
    : output_(output), styles_(styles), code_page_(code_page)
{
    for (std::size_t byte = 0; byte < classes_.size(); ++byte) {
        if (!xml_entity(static_cast<char>(byte)).empty()) {
            classes_[byte] = ByteClass::markup;
        }
    }
    classes_[static_cast<uint8_t>(' ')] = ByteClass::space;
    classes_[static_cast<uint8_t>(page::zero_blank)] = ByteClass::space;
    classes_[static_cast<uint8_t>(page::tab_byte)] = ByteClass::tab;
}

void OdfText::begin_paragraph(std::string_view style)
{
    xml_.append("<text:p text:style-name=\"").append(style).append("\">");
    attributes_ = 0;
    after_space_ = true;
}

void OdfText::end_paragraph()
{
    if ((attributes_ & underline) != 0 && spaces_ != 0) {
        enter_span();
        write_space_element(spaces_);
    }
    spaces_ = 0;
    change_span(0);
    xml_.append("</text:p>\n");
    hand_on_if_full();
}

void OdfText::finish()
{
    output_.write(xml_);
    xml_.clear();
}

void OdfText::leading_spaces(std::size_t count)
{
    spaces_ += count;
}

void OdfText::text(std::string_view bytes, AttributeSet attributes)
{
    if (attributes != attributes_ && !bytes.empty()) {
        write_spaces();
        attributes_ = attributes;
    }
    while (!bytes.empty()) {
        std::size_t length = plain_length(bytes.substr(0, stretch_bytes));
        if (length != 0) {
            write_spaces();
            enter_span();
            code_page_.append_utf8(xml_, bytes.substr(0, length));
            after_space_ = false;
        } else {
            length = write_special(bytes);
        }
        bytes.remove_prefix(length);
        hand_on_if_full();
    }
}

// Before anything is written of the text.
void OdfText::enter_span()
{
    if (span_ != attributes_) {
        change_span(attributes_);
    }
}

void OdfText::change_span(AttributeSet attributes)
{
    if (std::exchange(span_, attributes) != 0) {
        xml_.append("</text:span>");
    }
    if (attributes != 0) {
        xml_.append("<text:span text:style-name=\"");
        xml_.append(styles_.text_style(attributes)).append("\">");
    }
}

// Of what stands for itself at the start, single spaces within it included.
std::size_t OdfText::plain_length(std::string_view bytes) const
{
    std::size_t length = 0;
    while (length < bytes.size()) {
        if (class_of(bytes[length]) == ByteClass::plain) {
            ++length;
        } else if (bytes[length] == ' ' && length != 0 && length + 1 < bytes.size() &&
                   class_of(bytes[length + 1]) == ByteClass::plain) {
            length += 2;
        } else {
            break;
        }
    }
    return length;
}

// Returns how many bytes are done with.
std::size_t OdfText::write_special(std::string_view bytes)
{
    switch (class_of(bytes.front())) {
    case ByteClass::space: {
        const std::size_t end = bytes.find_first_not_of(page::blank_bytes);
        const std::size_t count = std::min(end, bytes.size());
        spaces_ += count;
        return count;
    }
    case ByteClass::tab:
        write_spaces();
        enter_span();
        xml_.append("<text:tab/>");
        after_space_ = true;
        return 1;
    case ByteClass::markup:
        write_spaces();
        enter_span();
        xml_.append(xml_entity(bytes.front()));
        after_space_ = false;
        return 1;
    case ByteClass::plain: break;
    }
    return 0;
}

// Something follows them.
void OdfText::write_spaces()
{
    std::size_t count = std::exchange(spaces_, 0);
    if (count == 0) {
        return;
    }
    enter_span();
    if (!std::exchange(after_space_, true)) {
        xml_.push_back(' ');
        --count;
    }
    if (count != 0) {
        write_space_element(count);
    }
}

void OdfText::write_space_element(std::size_t count)
{
    if (count == 1) {
        xml_.append("<text:s/>");
    } else {
        xml_.append("<text:s text:c=\"").append(std::to_string(count)).append("\"/>");
    }
}

void OdfText::hand_on_if_full()
{
    if (xml_.size() >= buffer_bytes) {
        finish();
    }
}

} // namespace pfsdoc::writers
