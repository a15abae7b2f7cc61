// A table with one row per kind; everything in a document is checked against its row.
// Test: tests/builder/capabilities_test.cpp.
#include "builder/capabilities.h"
#include "builder/build.h"
#include "builder/encoders.h"
#include "builder/word_wrap.h"
#include "builder/write_characters.h"
#include "formats/first_choice.h"
#include "formats/write_family.h"

#include <algorithm>

namespace pfs_builder {
namespace {

constexpr Style base_styles = style_underline | style_bold | style_italic;
constexpr Style raised_and_lowered = style_superscript | style_subscript;
constexpr Style all_styles = base_styles | raised_and_lowered;

constexpr int most_columns = 255; // a margin of a record or a ruler is a byte
constexpr int write_ruler_columns = 255;
constexpr std::size_t write_ruler_stops = formats::write::ruler_entries;
constexpr int bit_ruler_columns = formats::choice::bit_ruler_bytes * 8;
constexpr int byte_ruler_columns = formats::choice::byte_ruler_columns;
constexpr std::size_t choice_most_stops = 99;  // readers store no more
constexpr std::size_t most_record_bytes = 253; // the length byte counts itself and the mark
constexpr char margin_record_type = formats::write::record_margins;

bool any_character(uint8_t)
{
    return true;
}

enum class Alignments { centre_only, all };

struct Abilities {
    Style text_styles;
    Style header_footer_styles;
    Alignments alignments;
    bool own_margins; // false: always 10 and 70
    std::size_t most_tab_stops;
    bool decimal_stops;
    bool records; // before the body
    bool records_in_text;
    bool suppression;
    bool double_spacing;
    bool ruler_and_page_break_lines;
    bool (*can_store)(uint8_t character);
};

constexpr Abilities write_b_abilities = {
    all_styles, style_none, Alignments::all, true,  write_ruler_stops, true, true,
    false,      false,      false,           false, write_can_store};

constexpr Abilities professional_write_1_abilities = {
    all_styles, base_styles, Alignments::all, true,         write_ruler_stops, true, true, true,
    true,       true,        false,           any_character};

constexpr Abilities first_choice_2_abilities = {all_styles,
                                                style_bold | style_underline,
                                                Alignments::all,
                                                true,
                                                choice_most_stops,
                                                false,
                                                false,
                                                false,
                                                false,
                                                true,
                                                false,
                                                any_character};

Abilities abilities_of(Kind kind)
{
    Abilities abilities = write_b_abilities;
    switch (kind) {
    case Kind::write_a: abilities.alignments = Alignments::centre_only; break;
    case Kind::write_b: break;
    case Kind::writing_assistant:
        abilities.text_styles = base_styles | style_superscript;
        abilities.can_store = writing_assistant_can_store;
        break;
    case Kind::professional_write_1: abilities = professional_write_1_abilities; break;
    case Kind::professional_write_2:
        abilities = professional_write_1_abilities;
        abilities.own_margins = false;
        abilities.most_tab_stops = 0;
        break;
    case Kind::first_choice_2: abilities = first_choice_2_abilities; break;
    case Kind::first_choice_3:
        abilities = first_choice_2_abilities;
        abilities.double_spacing = false;
        abilities.ruler_and_page_break_lines = true;
        break;
    }
    return abilities;
}

bool is_choice(Kind kind)
{
    return kind == Kind::first_choice_2 || kind == Kind::first_choice_3;
}

const char *style_name(Style style)
{
    switch (style & -style) { // its lowest bit
    case style_underline: return "underline";
    case style_bold: return "bold";
    case style_italic: return "italic";
    case style_superscript: return "superscript";
    default: return "subscript";
    }
}

std::string byte_name(uint8_t byte)
{
    constexpr const char *digits = "0123456789ABCDEF";
    return std::string("0x") + digits[byte >> 4] + digits[byte & 0x0F];
}

class Checker {
public:
    explicit Checker(const Document &document)
        : document_(document), abilities_(abilities_of(document.kind))
    {
    }

    std::optional<Fault> check()
    {
        check_signature();
        check_generation();
        check_margins(document_.margins, document_.margins_location);
        check_own_margins();
        check_tab_stops();
        check_header_footer(document_.header, 0);
        check_header_footer(document_.footer, 2);
        for (const Record &record : document_.records) {
            std::visit([this](const auto &one) { check_record(one, abilities_.records); }, record);
        }
        for (const Element &element : document_.body) {
            std::visit([this](const auto &one) { check_element(one); }, element);
        }
        return fault_;
    }

private:
    // Stores the first fault.
    void refuse(const Location &location, std::string what, std::string remedy)
    {
        if (!fault_) {
            fault_ = fault_at(document_, location, std::move(what), std::move(remedy));
        }
    }

    // "WHAT cannot be said in KIND"
    void cannot_say(const Location &location, const std::string &what, std::string remedy)
    {
        refuse(location, what + " cannot be said in " + kind_name(document_.kind),
               std::move(remedy));
    }

    void check_signature()
    {
        const bool has_choice = document_.kind == Kind::write_a || document_.kind == Kind::write_b;
        if (document_.signature && !has_choice) {
            cannot_say(document_.signature_location, "a choice of signature",
                       "leave `signature` out: only PFS: WRITE has two");
        }
    }

    void check_generation()
    {
        if (!document_.generation) {
            return;
        }
        if (!is_choice(document_.kind)) {
            cannot_say(document_.generation_location, "a generation",
                       "leave `generation` out: only First Choice has one");
        } else if ((*document_.generation == '3') != (document_.kind == Kind::first_choice_3)) {
            refuse(document_.generation_location,
                   std::string("generation byte ") +
                       byte_name(static_cast<uint8_t>(*document_.generation)) +
                       " does not make a " + kind_name(document_.kind) + " document",
                   "generation 3 and no other is First Choice 3.0");
        }
    }

    void check_margins(const Margins &margins, const Location &location)
    {
        if (margins.left < 1 || margins.right <= margins.left || margins.right > most_columns) {
            refuse(location,
                   "margins " + std::to_string(margins.left) + " and " +
                       std::to_string(margins.right) + " leave no page",
                   "let both be from 1 to 255 and the left one the smaller");
        }
    }

    void check_own_margins()
    {
        const Margins fixed;
        const bool differ =
            document_.margins.left != fixed.left || document_.margins.right != fixed.right;
        if (!abilities_.own_margins && differ) {
            cannot_say(document_.margins_location, "margins other than 10 and 70 in the header",
                       "use `record: margins LEFT RIGHT`");
        }
    }

    int last_tab_column() const
    {
        if (!is_choice(document_.kind)) {
            return write_ruler_columns;
        }
        const char generation = document_.generation.value_or('2');
        const bool as_bits = generation == '2' || generation == '3';
        return as_bits ? bit_ruler_columns : byte_ruler_columns;
    }

    void check_tab_stops()
    {
        if (document_.tab_stops.size() > abilities_.most_tab_stops) {
            cannot_say(document_.tab_stops_location,
                       std::to_string(document_.tab_stops.size()) + " tab stops",
                       "leave all but " + std::to_string(abilities_.most_tab_stops) + " out");
        }
        for (const TabStop &stop : document_.tab_stops) {
            if (stop.column < 1 || stop.column > last_tab_column()) {
                cannot_say(document_.tab_stops_location,
                           "a tab stop in column " + std::to_string(stop.column),
                           "use columns 1 to " + std::to_string(last_tab_column()));
            }
            if (stop.decimal && !abilities_.decimal_stops) {
                cannot_say(document_.tab_stops_location, "a decimal tab stop",
                           "write the column without its dot");
            }
        }
    }

    void check_header_footer(const HeaderFooter &block, std::size_t first_text)
    {
        const formats::LineTable &limits = is_choice(document_.kind)
                                               ? formats::choice::line_text_sizes
                                               : formats::write::line_text_sizes;
        for (std::size_t i = 0; i < block.lines.size(); ++i) {
            const std::size_t limit = limits[first_text + i];
            if (block.lines[i].size() > limit) {
                refuse(block.line_locations[i],
                       "this line has " + std::to_string(block.lines[i].size()) + " characters",
                       "shorten it to " + std::to_string(limit));
            }
        }
        check_alignment(block);
        const Style extra = block.style & static_cast<Style>(~abilities_.header_footer_styles);
        if (extra != style_none) {
            cannot_say(block.style_location,
                       std::string("a header or footer in ") + style_name(extra),
                       "leave that style out");
        }
    }

    void check_alignment(const HeaderFooter &block)
    {
        if (abilities_.alignments == Alignments::centre_only && block.alignment &&
            *block.alignment != Alignment::centre) {
            cannot_say(block.alignment_location, "a header or footer that is not centred",
                       "leave the alignment out");
        }
    }

    void check_record(const MarginRecord &record, bool possible)
    {
        if (!possible) {
            cannot_say(record.location, "a margin record here", "use `margins` in the header part");
        }
        check_margins(record.margins, record.location);
    }

    void check_record(const OtherRecord &record, bool possible)
    {
        if (!possible) {
            cannot_say(record.location, "a record here", "leave it out");
        }
        if (record.bytes.empty() || record.bytes.size() > most_record_bytes) {
            refuse(record.location, "a record has a type byte and at most 252 bytes behind it",
                   "write that many");
        } else if (record.bytes.front() == margin_record_type) {
            refuse(record.location, "a record of type 01 sets margins",
                   "write it as margins, so that lines are wrapped to them");
        }
    }

    void check_element(const MarginRecord &record)
    {
        check_record(record, abilities_.records_in_text);
    }

    void check_element(const OtherRecord &record)
    {
        check_record(record, abilities_.records_in_text);
    }

    void check_element(const Spacing &spacing)
    {
        if (!abilities_.double_spacing) {
            cannot_say(spacing.location, "line spacing", "leave it out");
        }
    }

    void check_element(const RulerLine &ruler)
    {
        if (!abilities_.ruler_and_page_break_lines) {
            cannot_say(ruler.location, "a ruler line", "set margins and tabs in the header part");
        }
        const auto stops = std::count(ruler.columns.begin(), ruler.columns.end(), 'T');
        if (ruler.columns.size() > most_columns ||
            static_cast<std::size_t>(stops) > choice_most_stops) {
            refuse(ruler.location, "a ruler line has at most 255 columns and 99 tab stops",
                   "shorten it");
        }
        check_ruler_margins(ruler);
    }

    void check_ruler_margins(const RulerLine &ruler)
    {
        const std::size_t left = ruler.columns.rfind('[');
        const std::size_t right = ruler.columns.rfind(']');
        if (left != std::string::npos && right != std::string::npos && left >= right) {
            refuse(ruler.location, "this ruler's right margin is not right of its left one",
                   "write `]` behind `[`");
        }
        if (ruler.columns.find('\r') != std::string::npos) {
            refuse(ruler.location, "byte 0x0D would end the ruler line", "leave it out");
        }
    }

    void check_element(const PageBreakLine &line)
    {
        if (!abilities_.ruler_and_page_break_lines) {
            cannot_say(line.location, "a page-break line", "write *NEW PAGE* into the text");
        }
        if (line.text.find('\r') != std::string::npos) {
            refuse(line.location, "byte 0x0D would end the page-break line", "leave it out");
        }
    }

    void check_element(const RawBytes &) {}

    void check_element(const Paragraph &paragraph)
    {
        for (const Cell &cell : paragraph.cells) {
            check_cell(cell);
        }
        const Cell *misplaced = misplaced_suppression(paragraph);
        if (misplaced != nullptr && abilities_.suppression) {
            refuse(misplaced->location,
                   "a suppressed stretch lasts to the end of its line, which goes on in the next",
                   "let text stand before it and one space and more text behind it, or give it "
                   "a paragraph of its own");
        }
    }

    void check_cell(const Cell &cell)
    {
        if (cell.hidden && !abilities_.suppression) {
            cannot_say(cell.location, "a suppressed stretch", "leave `{hide}` out");
        }
        const Style extra = cell.style & static_cast<Style>(~abilities_.text_styles);
        if (extra != style_none) {
            cannot_say(cell.location, style_name(extra), "leave that style out");
        }
        const auto character = static_cast<uint8_t>(cell.bytes.front());
        if (cell.kind == CellKind::text && !abilities_.can_store(character)) {
            cannot_say(cell.location, "character " + byte_name(character) + " of code page 437",
                       "use another character");
        }
    }

    const Document &document_;
    Abilities abilities_;
    std::optional<Fault> fault_;
};

} // namespace

std::optional<Fault> check_capabilities(const Document &document)
{
    return Checker(document).check();
}

} // namespace pfs_builder
