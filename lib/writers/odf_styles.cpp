#include "lib/writers/odf_styles.h"

#include "pfsdoc/attribute_names.h"
#include "vs_pfs.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <utility>

namespace pfsdoc::writers {

namespace {

using page::LineAlignment;
using page::LineGeometry;
using page::LineLayout;
using page::PageColumns;
using page::TabColumn;

// Lengths are hundredths of an inch: a column is ten of them.
constexpr int32_t hundredths_per_inch = 100;
constexpr int32_t column_hundredths = 10;
constexpr int32_t page_height = 11 * hundredths_per_inch;
constexpr int32_t usual_page_columns = 85;
// Between the text and the edge of the paper at least, as printers need it.
constexpr int32_t edge_columns = 3;
// The font's characters are a little wider than a tenth of an inch: without this room, lines
// that fill their columns would be broken.
constexpr int32_t spare_width = 1;
constexpr std::size_t lines_per_inch = 6;

// What all paragraphs have in common, by their spacing. Single spacing has a fixed height; a
// fixed height of two lines would have its room above the text, and so would a least one. A
// share of the font's own height, which is 13.6 points, has it below; 176 percent of that are
// two lines of 12 points, rounded to a whole number, as readers want it, and down, so that as
// many of them fit on a page.
constexpr std::string_view single_spaced_style = "Standard";
constexpr std::string_view single_spacing = "12pt";
constexpr std::string_view double_spaced_style = "Double";
constexpr std::string_view double_spacing = "176%";

// What a remembered look takes besides its tab stops and its name.
constexpr std::size_t look_bytes = 160;

void append_inches(std::string &xml, int32_t hundredths)
{
    const int32_t size = std::abs(hundredths);
    xml.append(hundredths < 0 ? "-" : "").append(std::to_string(size / hundredths_per_inch));
    if (const int32_t fraction = size % hundredths_per_inch; fraction != 0) {
        xml.append(fraction < column_hundredths ? ".0" : ".");
        xml.append(std::to_string(fraction % column_hundredths == 0 ? fraction / column_hundredths
                                                                    : fraction));
    }
    xml.append("in");
}

void append_length(std::string &xml, std::string_view attribute, int32_t hundredths)
{
    xml.append(" ").append(attribute).append("=\"");
    append_inches(xml, hundredths);
    xml.push_back('"');
}

// One that is 0 goes without saying.
void append_columns(std::string &xml, std::string_view attribute, int32_t columns)
{
    if (columns != 0) {
        append_length(xml, attribute, columns * column_hundredths);
    }
}

void append_vertical_margin(std::string &xml, std::string_view attribute, bool is_used)
{
    const std::size_t lines = is_used ? margin_lines - header_lines : margin_lines;
    append_length(xml, attribute,
                  static_cast<int32_t>(lines) * hundredths_per_inch /
                      static_cast<int32_t>(lines_per_inch));
}

// -------------------------------------------------------------------- paragraphs ------

// By how many columns the page is moved to the right, away from the edge.
int32_t page_shift(const PageColumns &page)
{
    return std::max(0, edge_columns - page.left);
}

// As many as the document's columns need, and not fewer than usual.
int32_t paper_columns(const PageColumns &page)
{
    return std::max(usual_page_columns, page_shift(page) + page.right + 1 + edge_columns);
}

// Tabs beyond the last stop go to every eighth column, so a paragraph that has tabs gets stops
// there too.
std::vector<ParagraphLook::TabStop> look_stops(const LineGeometry &geometry, bool has_tab)
{
    std::vector<TabColumn> columns = geometry.tab_stops;
    std::sort(columns.begin(), columns.end(),
              [](const TabColumn &a, const TabColumn &b) { return a.column < b.column; });
    std::size_t last = columns.empty() ? 0 : columns.back().column;
    const std::size_t step = LineLayout::fallback_tab_columns;
    for (last += step - last % step; has_tab && last < geometry.width; last += step) {
        columns.push_back({last, false});
    }
    std::vector<ParagraphLook::TabStop> stops;
    stops.reserve(columns.size());
    for (const TabColumn &stop : columns) {
        const auto column = static_cast<int32_t>(stop.column);
        stops.push_back({column - static_cast<int32_t>(geometry.indent), stop.decimal});
    }
    return stops;
}

std::string_view alignment_word(LineAlignment alignment)
{
    switch (alignment) {
    case LineAlignment::right: return "Right";
    case LineAlignment::centre: return "Center";
    case LineAlignment::left: break;
    }
    return "Left";
}

std::string_view alignment_value(LineAlignment alignment)
{
    switch (alignment) {
    case LineAlignment::right: return "right";
    case LineAlignment::centre: return "center";
    case LineAlignment::left: break;
    }
    return "left";
}

void append_name_part(std::string &name, std::string_view word, int32_t columns)
{
    if (columns != 0) {
        name.append("-").append(word).append(std::to_string(columns));
    }
}

void append_tab_stops(std::string &xml, const std::vector<ParagraphLook::TabStop> &stops)
{
    xml.append("<style:tab-stops>");
    for (const ParagraphLook::TabStop &stop : stops) {
        xml.append("<style:tab-stop");
        append_length(xml, "style:position", stop.column * column_hundredths);
        xml.append(stop.is_decimal ? R"( style:type="char" style:char="."/>)" : "/>");
    }
    xml.append("</style:tab-stops>");
}

// -------------------------------------------------------------------------- text ------

struct TextLook {
    AttributeCode code;
    std::string_view name;
    std::string_view properties;
};
// Raised text is not lowered too, so what comes first of the last two counts.
constexpr std::array<TextLook, 5> text_looks = {{
    {AttributeCode::bold, "Bold",
     R"( fo:font-weight="bold" style:font-weight-asian="bold" style:font-weight-complex="bold")"},
    {AttributeCode::italic, "Italic",
     R"( fo:font-style="italic" style:font-style-asian="italic" style:font-style-complex="italic")"},
    {AttributeCode::underline, "Underline",
     R"( style:text-underline-type="single" style:text-underline-style="solid")"},
    {AttributeCode::superscript, "Super", R"( style:text-position="super 58%")"},
    {AttributeCode::subscript, "Sub", R"( style:text-position="sub 58%")"},
}};

constexpr AttributeSet bit_of(AttributeCode code)
{
    return attribute_bit(code);
}

constexpr AttributeSet without_contradiction(AttributeSet attributes)
{
    const bool is_raised = (attributes & bit_of(AttributeCode::superscript)) != 0;
    return is_raised ? attributes & static_cast<AttributeSet>(~bit_of(AttributeCode::subscript))
                     : attributes;
}

std::string text_style_name(std::string_view prefix, AttributeSet attributes)
{
    std::string name;
    for (const TextLook &look : text_looks) {
        if ((attributes & bit_of(look.code)) != 0) {
            name.append(name.empty() ? prefix : "-").append(look.name);
        }
    }
    return name;
}

void append_common_style(std::string &xml, std::string_view name, std::string_view spacing)
{
    xml.append("<style:style style:name=\"").append(name);
    xml.append(
        R"(" style:family="paragraph" style:class="text"><style:paragraph-properties fo:line-height=")");
    xml.append(spacing).append(R"(" fo:text-align="left"/></style:style>)").append("\n");
}

} // namespace

const ParagraphLook &ParagraphLooks::of(const LineGeometry &geometry, uint64_t tab_stops,
                                        int32_t line_spacing, const PageColumns &page,
                                        const ParagraphStart &start)
{
    const int32_t shift = page_shift(page);
    const int32_t end = paper_columns(page) - edge_columns - shift;
    const auto indent = static_cast<int32_t>(geometry.indent);
    const auto first_line = static_cast<int32_t>(geometry.first_line_indent);
    const int32_t begin = edge_columns - shift - std::min(indent, first_line);
    const int32_t left_margin =
        std::min(std::max(static_cast<int32_t>(geometry.left_margin), begin), end - 1);
    const auto width = static_cast<int32_t>(geometry.width);
    const int32_t right = std::min(left_margin + width, end) - 1;
    look_.alignment = geometry.alignment;
    look_.is_double_spaced = line_spacing == VW_DOUBLE_SPACING;
    look_.page_break_before = start.page_break_before;
    look_.left = left_margin - page.left + indent;
    look_.right = page.right - right;
    look_.first_line = start.continues ? 0 : first_line - indent;
    const TabStopsKey key{tab_stops, geometry.indent, geometry.width, start.has_tab};
    if (tab_stops_key_ != key) {
        look_.tab_stops = look_stops(geometry, start.has_tab);
        tab_stops_key_ = key;
    }
    return look_;
}

// --------------------------------------------------------------------- OdfStyles ------

std::string_view OdfStyles::paragraph_style(const ParagraphLook &look)
{
    if (last_ != looks_.end() && last_->first == look) {
        return last_->second;
    }
    static const ParagraphLook plain;
    if (look == plain) {
        return single_spaced_style;
    }
    last_ = looks_.find(look);
    if (last_ != looks_.end()) {
        return last_->second;
    }
    std::string name = new_name(look);
    define(look, name);
    const std::size_t bytes =
        look_bytes + look.tab_stops.size() * sizeof(ParagraphLook::TabStop) + name.size();
    if (remembered_bytes_ + bytes > most_remembered) {
        looks_.clear();
        remembered_bytes_ = 0;
        has_forgotten_ = true;
    }
    remembered_bytes_ += bytes;
    last_ = looks_.emplace(look, std::move(name)).first;
    return last_->second;
}

std::string OdfStyles::new_name(const ParagraphLook &look)
{
    std::string name = prefix_;
    name.append(alignment_word(look.alignment));
    name.append(look.is_double_spaced ? "-double" : "");
    append_name_part(name, "left", look.left);
    append_name_part(name, "right", look.right);
    append_name_part(name, "first", look.first_line);
    name.append(look.page_break_before ? "-page" : "");
    if (!look.tab_stops.empty()) {
        name.append("-tabs").append(std::to_string(++last_number_));
    } else if (has_forgotten_) {
        name.append("-again").append(std::to_string(++last_number_));
    }
    return name;
}

void OdfStyles::define(const ParagraphLook &look, std::string_view name)
{
    std::string xml = "<style:style style:name=\"";
    xml.append(name).append(R"(" style:family="paragraph" style:parent-style-name=")");
    xml.append(look.is_double_spaced ? double_spaced_style : single_spaced_style);
    xml.append("\"><style:paragraph-properties");
    if (look.alignment != LineAlignment::left) {
        xml.append(" fo:text-align=\"").append(alignment_value(look.alignment)).append("\"");
    }
    append_columns(xml, "fo:margin-left", look.left);
    append_columns(xml, "fo:margin-right", look.right);
    append_columns(xml, "fo:text-indent", look.first_line);
    xml.append(look.page_break_before ? R"( fo:break-before="page")" : "");
    if (look.tab_stops.empty()) {
        xml.append("/>");
    } else {
        xml.push_back('>');
        append_tab_stops(xml, look.tab_stops);
        xml.append("</style:paragraph-properties>");
    }
    definitions_.write(xml.append("</style:style>\n"));
}

std::string_view OdfStyles::text_style(AttributeSet attributes)
{
    const AttributeSet shown = without_contradiction(attributes & attributes_with_look);
    const auto known = text_styles_.find(shown);
    return known != text_styles_.end()
               ? known->second
               : text_styles_.emplace(shown, text_style_name(prefix_, shown)).first->second;
}

void OdfStyles::append_text_styles(std::string &xml) const
{
    for (const auto &[attributes, name] : text_styles_) {
        xml.append("<style:style style:name=\"").append(name);
        xml.append(R"(" style:family="text"><style:text-properties)");
        for (const TextLook &look : text_looks) {
            xml.append((attributes & bit_of(look.code)) != 0 ? look.properties : "");
        }
        xml.append("/></style:style>\n");
    }
}

// -------------------------------------------------------------------------- page ------

void append_common_styles(std::string &xml)
{
    xml.append(R"(<style:default-style style:family="paragraph">)"
               R"(<style:paragraph-properties fo:orphans="0" fo:widows="0")"
               R"( style:tab-stop-distance="0.8in" style:text-autospace="none")"
               R"( style:punctuation-wrap="simple" style:writing-mode="page"/>)"
               R"(<style:text-properties style:use-window-font-color="true")"
               R"( style:font-name="Courier New" style:font-name-asian="Courier New")"
               R"( style:font-name-complex="Courier New" fo:font-size="12pt")"
               R"( style:font-size-asian="12pt" style:font-size-complex="12pt"/>)"
               "</style:default-style>\n");
    append_common_style(xml, single_spaced_style, single_spacing);
    append_common_style(xml, double_spaced_style, double_spacing);
}

void append_page_layout(std::string &xml, const PageColumns &page, bool has_header, bool has_footer)
{
    const int32_t paper = paper_columns(page);
    const int32_t width = paper * column_hundredths;
    const int32_t left = page_shift(page) + page.left;
    const int32_t right = (paper - left - page.width()) * column_hundredths - spare_width;
    xml.append("<style:page-layout style:name=\"").append(page_layout_name);
    xml.append("\"><style:page-layout-properties");
    append_length(xml, "fo:page-width", width);
    append_length(xml, "fo:page-height", page_height);
    append_length(xml, "fo:margin-left", left * column_hundredths);
    append_length(xml, "fo:margin-right", right);
    append_vertical_margin(xml, "fo:margin-top", has_header);
    append_vertical_margin(xml, "fo:margin-bottom", has_footer);
    xml.append(" style:print-orientation=\"");
    xml.append(width > page_height ? "landscape" : "portrait");
    xml.append("\" style:writing-mode=\"lr-tb\"/></style:page-layout>\n");
}

} // namespace pfsdoc::writers
