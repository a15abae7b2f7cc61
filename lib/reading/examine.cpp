#include "pfsdoc/examine.h"

#include "formats/text.h"
#include "lib/reading/byte_window.h"
#include "lib/reading/kind_tables.h"

#include <algorithm>
#include <array>
#include <optional>

namespace pfsdoc {

namespace {

using formats::FieldForm;
using formats::HeaderField;

// The last column that a ruler of any kind can mark.
constexpr int32_t last_column = 255;

// Fill behind the end: of sectors, clusters and file transfers. More than the largest cluster
// is none.
constexpr uint32_t most_fill = 65536;
bool is_fill(int32_t byte)
{
    return byte != reading::ByteWindow::no_byte && formats::is_fill(static_cast<uint8_t>(byte));
}

std::string at_offset(uint32_t offset)
{
    return " at " + std::to_string(offset);
}

class Examiner {
public:
    Examiner(ByteSource &source, DocumentKind kind) : bytes_(source), kind_(kind) {}

    Examination examine();

private:
    int32_t word(uint32_t at)
    {
        constexpr int32_t byte_values = 256;
        return bytes_.at(at) + byte_values * bytes_.at(at + 1);
    }
    bool has(uint32_t offset, std::string_view text);
    std::span<const HeaderField> fields();
    uint32_t body_offset();

    bool check_header();
    bool check_margins();
    bool check_lines();
    bool check_start_of_text();
    bool check_end();
    bool has_write_signature();
    RegistrySignature registry_signature();
    bool odd(std::string note)
    {
        examination_.notes.push_back(std::move(note));
        return false;
    }

    reading::ByteWindow bytes_;
    DocumentKind kind_;
    Examination examination_;
};

bool Examiner::has(uint32_t offset, std::string_view text)
{
    for (const char letter : text) {
        if (bytes_.at(offset++) != static_cast<unsigned char>(letter)) {
            return false;
        }
    }
    return true;
}

// The form of the ruler does not matter here.
std::span<const HeaderField> Examiner::fields()
{
    return is_first_choice(kind_) ? formats::choice_header_fields(false)
                                  : std::span<const HeaderField>(formats::write_header_fields);
}

bool Examiner::check_margins()
{
    std::array<int32_t, 2> margins{};
    std::size_t count = 0;
    for (const HeaderField &field : fields()) {
        if (field.form == FieldForm::column && (field.kinds & reading::kind_bit(kind_)) != 0) {
            margins.at(count++) = word(field.offset);
        }
    }
    const auto [left, right] = margins;
    if (count == 0 || (left >= 1 && left < right && right <= last_column)) {
        return true; // Professional Write 2 stores none
    }
    return odd("its margins, " + std::to_string(left) + " and " + std::to_string(right) +
               ", are not plausible");
}

bool Examiner::check_lines()
{
    bool plausible = true;
    for (const HeaderField &field : fields()) {
        if (field.form == FieldForm::line_text && bytes_.at(field.offset - 1U) > field.size) {
            plausible = odd(std::string(field.name) + " is longer than its field");
        }
    }
    return plausible;
}

// The form feed, or where there is none the end of the file; or the fixed offset.
uint32_t Examiner::body_offset()
{
    if (is_first_choice(kind_)) {
        return formats::choice::header_size;
    }
    uint32_t offset = formats::write::header_size;
    while (offset < bytes_.size() && bytes_.at(offset) != formats::form_feed) {
        ++offset;
    }
    return offset;
}

bool Examiner::check_start_of_text()
{
    return body_offset() < bytes_.size() || odd("the file ends before its text begins");
}

bool Examiner::check_header()
{
    const bool margins = check_margins();
    const bool lines = check_lines();
    return check_start_of_text() && margins && lines;
}

bool Examiner::check_end()
{
    const uint32_t size = bytes_.size();
    uint32_t end = size;
    while (end > 0 && size - end < most_fill && is_fill(bytes_.at(end - 1))) {
        --end;
    }
    if (end <= body_offset() || bytes_.at(end - 1) != formats::document_end) {
        return odd(
            "its last byte is not an end mark: it is truncated, or other bytes follow its end");
    }
    if (end < size) {
        odd(std::to_string(size - end) + " fill bytes follow its end mark" + at_offset(end - 1));
    }
    return true;
}

// 42 00, 06 or 0C, 00, six bytes, and the margins that most documents have; 0E at the very
// end. Documents with other margins do not have it.
bool Examiner::has_write_signature()
{
    using namespace std::string_view_literals;
    const bool page = has(2, "\x06\x00"sv) || has(2, "\x0C\x00"sv);
    return has(0, "\x42\x00"sv) && page && has(10, "\x0A\x00\x46\x00"sv) && bytes_.size() > 0 &&
           bytes_.at(bytes_.size() - 1) == formats::document_end;
}

RegistrySignature Examiner::registry_signature()
{
    bool matches = false;
    switch (kind_) {
    case DocumentKind::write_a:
    case DocumentKind::write_b: matches = has_write_signature(); break;
    case DocumentKind::first_choice_2:
        matches = has(formats::choice::magic_offset, "GERBILDOC ");
        break;
    case DocumentKind::first_choice_3:
        matches = has(formats::choice::magic_offset, "GERBILDOC3");
        break;
    default: return RegistrySignature::none;
    }
    return matches ? RegistrySignature::matches : RegistrySignature::differs;
}

Examination Examiner::examine()
{
    const bool plausible = check_header();
    const bool ended = check_end();
    if (plausible) {
        examination_.confidence = ended ? Confidence::certain : Confidence::likely;
    }
    examination_.registry_signature = registry_signature();
    if (examination_.registry_signature == RegistrySignature::differs) {
        odd("it lacks the signature that PRONOM has for " + std::string(pronom_id(kind_)));
    }
    return std::move(examination_);
}

} // namespace

std::string_view confidence_name(Confidence confidence)
{
    switch (confidence) {
    case Confidence::certain: return "certain";
    case Confidence::likely: return "likely";
    default: return "signature";
    }
}

std::string_view pronom_id(DocumentKind kind)
{
    return reading::facts_of(kind).pronom_id;
}

Examination examine(ByteSource &source, DocumentKind kind)
{
    return Examiner(source, kind).examine();
}

} // namespace pfsdoc
