#include "lib/writers/html_text.h"

#include "lib/page/blank_bytes.h"
#include "pfsdoc/attribute_names.h"

#include <algorithm>
#include <utility>

namespace pfsdoc::writers {

namespace {

constexpr char16_t first_beyond_ascii = 0x80;

// From the outside in. The first is not an attribute's.
struct Element {
    AttributeSet attribute;
    std::string_view begin;
    std::string_view end;
};
constexpr AttributeSet bit_of(AttributeCode code)
{
    return attribute_bit(code);
}
constexpr std::array<Element, 6> elements = {{
    {0, "<span class=\"word\">", "</span>"},
    {bit_of(AttributeCode::bold), "<b>", "</b>"},
    {bit_of(AttributeCode::italic), "<i>", "</i>"},
    {bit_of(AttributeCode::underline), "<u>", "</u>"},
    {bit_of(AttributeCode::subscript), "<sub>", "</sub>"},
    {bit_of(AttributeCode::superscript), "<sup>", "</sup>"},
}};
constexpr unsigned word_element = 1U;

unsigned elements_of(AttributeSet attributes)
{
    unsigned bits = 0;
    for (std::size_t i = 0; attributes != 0 && i < elements.size(); ++i) {
        bits |= (attributes & elements[i].attribute) != 0 ? 1U << i : 0U;
    }
    return bits;
}

// Empty for a character that stands for itself.
std::string_view entity_of(char character)
{
    switch (character) {
    case '&': return "&amp;";
    case '<': return "&lt;";
    case '>': return "&gt;";
    default: return {};
    }
}

bool is_ascii_letter_or_digit(char16_t character)
{
    return (character >= u'0' && character <= u'9') || (character >= u'A' && character <= u'Z') ||
           (character >= u'a' && character <= u'z');
}

// Of the alphabets that code pages have, the letters that browsers never part.
bool is_letter_beyond_ascii(char16_t character)
{
    const bool is_latin = character >= u'\u00C0' && character <= u'\u024F' &&
                          character != u'\u00D7' && character != u'\u00F7';
    const bool is_greek_or_cyrillic = character >= u'\u0370' && character <= u'\u04FF';
    return is_latin || is_greek_or_cyrillic;
}

} // namespace

void append_html_escaped(std::string &html, std::string_view utf8)
{
    for (const char character : utf8) {
        const std::string_view entity = entity_of(character);
        if (entity.empty()) {
            html.push_back(character);
        } else {
            html.append(entity);
        }
    }
}

// ---------------------------------------------------------------------- ShownText -----

void ShownText::clear()
{
    bytes_ = {};
    copy_.clear();
    runs_.clear();
}

void ShownText::add(std::string_view bytes, AttributeSet attributes)
{
    if (bytes.empty()) {
        return;
    }
    if (runs_.empty() || runs_.back().attributes != attributes) {
        runs_.push_back({bytes_.size(), attributes});
    }
    if (bytes_.empty()) {
        bytes_ = bytes;
    } else if (copy_.empty() && bytes_.data() + bytes_.size() == bytes.data()) {
        bytes_ = {bytes_.data(), bytes_.size() + bytes.size()};
    } else {
        if (copy_.empty()) {
            copy_ = bytes_;
        }
        copy_.append(bytes);
        bytes_ = copy_;
    }
}

bool ShownText::has_word() const
{
    return bytes_.find_first_not_of(page::gap_bytes) != std::string::npos;
}

// ----------------------------------------------------------------------- HtmlText -----

HtmlText::HtmlText(base::Utf8Output &output, const CodePage &code_page) : output_(output)
{
    for (unsigned byte = 0; byte < classes_.size(); ++byte) {
        const auto value = static_cast<uint8_t>(byte);
        const ByteClass kind = class_of(value, code_page.character(value));
        const bool may_need_word = kind == ByteClass::exclamation || kind == ByteClass::opening ||
                                   kind == ByteClass::hyphen || kind == ByteClass::other;
        classes_[byte] = kind;
        is_stop_[byte] =
            may_need_word || kind == ByteClass::tab || !entity_of(static_cast<char>(value)).empty();
    }
}

void HtmlText::write(const ShownText &text, TabWidths &tabs, bool outer_blanks_shown,
                     std::size_t line_columns)
{
    text_ = &text;
    line_columns_ = line_columns;
    run_ = 0;
    const Range visible = visible_range(outer_blanks_shown);
    write_hidden({0, visible.begin});
    write_visible(visible, tabs);
    write_hidden({visible.end, text.bytes().size()});
    set_elements(0);
}

HtmlText::Range HtmlText::visible_range(bool outer_blanks_shown) const
{
    Range range{0, text_->bytes().size()};
    if (!outer_blanks_shown) {
        while (range.begin < range.end && byte_class(range.begin) == ByteClass::blank) {
            ++range.begin;
        }
        while (range.begin < range.end && byte_class(range.end - 1) == ByteClass::blank) {
            --range.end;
        }
    }
    return range;
}

void HtmlText::write_visible(const Range &range, TabWidths &tabs)
{
    std::size_t at = range.begin;
    while (at < range.end) {
        const std::size_t stop = std::min(next_stop(at), range.end);
        if (stop == range.end || byte_class(stop) == ByteClass::tab) {
            write_plain({at, stop});
            at = stop == range.end ? stop : write_tab({stop, range.end}, tabs.next(stop));
        } else {
            const Range word = word_around(stop, at);
            write_plain({at, word.begin});
            write_word(word);
            at = word.end;
        }
    }
}

std::size_t HtmlText::next_stop(std::size_t at) const
{
    const std::string_view rest = text_->bytes().substr(at);
    const auto stop = std::find_if(rest.begin(), rest.end(), [this](char byte) {
        return is_stop_[static_cast<uint8_t>(byte)];
    });
    return at + static_cast<std::size_t>(stop - rest.begin());
}

// ------------------------------------------------------------------- line breaking ----

// ASCII without letters and digits.
struct HtmlText::ClassOfAscii {
    std::string_view characters;
    ByteClass kind;
};
constexpr std::array<HtmlText::ClassOfAscii, 7> HtmlText::ascii_classes = {{
    {" ", ByteClass::blank},
    {"@^_`", ByteClass::letter},
    {"\"'#&*=>~", ByteClass::neutral},
    {".,;:)]", ByteClass::closing},
    {"!?/}", ByteClass::exclamation},
    {"([{<", ByteClass::opening},
    {"-", ByteClass::hyphen},
}};

HtmlText::ByteClass HtmlText::class_of(uint8_t byte, char16_t character)
{
    if (byte == static_cast<uint8_t>(page::tab_byte)) {
        return ByteClass::tab;
    }
    if (is_ascii_letter_or_digit(character) || is_letter_beyond_ascii(character)) {
        return ByteClass::letter;
    }
    for (const ClassOfAscii &entry : ascii_classes) {
        if (character < first_beyond_ascii &&
            entry.characters.find(static_cast<char>(character)) != std::string_view::npos) {
            return entry.kind;
        }
    }
    return ByteClass::other;
}

bool HtmlText::may_part(ByteClass before, ByteClass after)
{
    const bool after_closes = after == ByteClass::closing || after == ByteClass::exclamation;
    if (before == ByteClass::opening || after_closes) {
        return false;
    }
    if (before == ByteClass::other || after == ByteClass::other || before == ByteClass::hyphen) {
        return true;
    }
    if (after == ByteClass::opening) {
        return before != ByteClass::letter;
    }
    return before == ByteClass::exclamation && after != ByteClass::neutral;
}

HtmlText::ByteClass HtmlText::byte_class(std::size_t at) const
{
    return classes_[static_cast<uint8_t>(text_->bytes()[at])];
}

bool HtmlText::ends_word(std::size_t at) const
{
    return at == text_->bytes().size() || byte_class(at) == ByteClass::blank ||
           byte_class(at) == ByteClass::tab;
}

HtmlText::Range HtmlText::word_around(std::size_t at, std::size_t written) const
{
    Range word{at, at + 1};
    while (word.begin > written && !ends_word(word.begin - 1)) {
        --word.begin;
    }
    while (!ends_word(word.end)) {
        ++word.end;
    }
    return word;
}

bool HtmlText::may_be_broken(const Range &word) const
{
    for (std::size_t at = word.begin + 1; at < word.end; ++at) {
        if (may_part(byte_class(at - 1), byte_class(at))) {
            return true;
        }
    }
    return false;
}

// ------------------------------------------------------------------------- writing ----

void HtmlText::write_word(const Range &word)
{
    in_word_ = word.end - word.begin <= line_columns_ && may_be_broken(word);
    std::size_t written = word.begin;
    for (std::size_t at = word.begin; at < word.end; ++at) {
        if (!entity_of(text_->bytes()[at]).empty()) {
            write_plain({written, at});
            write_escaped(at);
            written = at + 1;
        }
    }
    write_plain({written, word.end});
    in_word_ = false;
}

// The tab that the range begins with, and the blanks behind it if they are not shown. Returns
// where it has written to.
std::size_t HtmlText::write_tab(const Range &range, const page::TabGap &gap)
{
    std::size_t end = range.begin + 1;
    while (gap.takes_spaces && end < range.end && byte_class(end) == ByteClass::blank) {
        ++end;
    }
    go_to(range.begin);
    tags_.assign("<span class=\"tab\" style=\"--w:");
    tags_.append(std::to_string(gap.columns)).append("\">\t");
    if (const std::size_t blanks = end - range.begin - 1; blanks != 0) {
        output_.utf8(std::exchange(tags_, {}));
        output_.text(text_->bytes().substr(range.begin + 1, blanks));
    }
    output_.utf8(tags_.append("</span>"));
    return end;
}

void HtmlText::write_hidden(const Range &blanks)
{
    if (blanks.begin < blanks.end) {
        go_to(blanks.begin);
        output_.utf8("<span class=\"tab\">");
        output_.text(text_->bytes().substr(blanks.begin, blanks.end - blanks.begin));
        output_.utf8("</span>");
    }
}

void HtmlText::write_plain(const Range &range)
{
    const std::string_view bytes = text_->bytes();
    const std::vector<ShownText::Run> &runs = text_->runs();
    std::size_t at = range.begin;
    while (at < range.end) {
        go_to(at);
        const std::size_t run_end = run_ + 1 < runs.size() ? runs[run_ + 1].begin : bytes.size();
        const std::size_t end = std::min(range.end, run_end);
        output_.text(bytes.substr(at, end - at));
        at = end;
    }
}

void HtmlText::write_escaped(std::size_t at)
{
    go_to(at);
    output_.utf8(entity_of(text_->bytes()[at]));
}

void HtmlText::go_to(std::size_t at)
{
    const std::vector<ShownText::Run> &runs = text_->runs();
    while (run_ + 1 < runs.size() && runs[run_ + 1].begin <= at) {
        ++run_;
    }
    set_elements(
        static_cast<uint8_t>(elements_of(runs[run_].attributes) | (in_word_ ? word_element : 0U)));
}

// Closes all elements from the outermost one that changes on, and opens what is wanted.
void HtmlText::set_elements(uint8_t wanted)
{
    const unsigned changes = static_cast<unsigned>(open_elements_ ^ wanted);
    if (changes == 0) {
        return;
    }
    std::size_t first = 0;
    while ((changes >> first & 1U) == 0) {
        ++first;
    }
    tags_.clear();
    for (std::size_t i = elements.size(); i > first; --i) {
        if ((open_elements_ >> (i - 1) & 1) != 0) {
            tags_.append(elements[i - 1].end);
        }
    }
    for (std::size_t i = first; i < elements.size(); ++i) {
        if ((wanted >> i & 1) != 0) {
            tags_.append(elements[i].begin);
        }
    }
    output_.utf8(tags_);
    open_elements_ = wanted;
}

} // namespace pfsdoc::writers
