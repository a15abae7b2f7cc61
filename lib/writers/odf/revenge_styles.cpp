#include "lib/writers/odf/revenge_styles.h"

#include "pfsdoc/attribute_names.h"
#include "vs_pfs.h"

#include <algorithm>
#include <utility>

namespace pfsdoc::writers {

namespace {

using librevenge::RVNGPropertyList;
using librevenge::RVNGPropertyListVector;

constexpr int32_t columns_per_inch = 10;
constexpr double lines_per_inch = 6;
constexpr double page_height = 11;
constexpr int32_t usual_page_columns = 85;
constexpr double font_points = 12;
constexpr double line_points = 12;
constexpr const char *font = "Courier New";
// The font's characters are a little wider than a tenth of an inch: without this room, lines
// that fill their columns would be broken.
constexpr double spare_width = 0.01;

constexpr const char *tab_stops_property = "style:tab-stops";
constexpr const char *paragraph_number = "librevenge:paragraph-id";
constexpr const char *span_number = "librevenge:span-id";
// As measured with libodfgen, where an element takes 300 bytes, a style 3000 and a tab stop of
// a style 850.
constexpr uint64_t style_elements = 10;
constexpr uint64_t tab_stop_elements = 3;

double inches(int32_t columns)
{
    return static_cast<double>(columns) / columns_per_inch;
}

double vertical_margin(bool is_used)
{
    return static_cast<double>(is_used ? margin_lines - header_lines : margin_lines) /
           lines_per_inch;
}

// The document's columns, and the paper's where they are fewer.
int32_t paper_columns(const page::PageColumns &page)
{
    return std::max(usual_page_columns, page.right + 1);
}

// Properties that are 0 go without saying.
void insert_columns(RVNGPropertyList &properties, const char *name, int32_t columns)
{
    if (columns != 0) {
        properties.insert(name, inches(columns));
    }
}

void insert_margins(RVNGPropertyList &properties, const page::LineGeometry &geometry,
                    const page::PageColumns &page, bool continues)
{
    const int32_t paper = paper_columns(page);
    const auto left_margin = std::min(static_cast<int32_t>(geometry.left_margin), paper - 1);
    const auto width = static_cast<int32_t>(geometry.width);
    const int32_t right = std::min(left_margin + width, paper) - 1;
    const auto indent = static_cast<int32_t>(geometry.indent);
    const auto first_line = static_cast<int32_t>(geometry.first_line_indent);
    insert_columns(properties, "fo:margin-left", left_margin - page.left + indent);
    insert_columns(properties, "fo:margin-right", page.right - right);
    insert_columns(properties, "fo:text-indent", continues ? 0 : first_line - indent);
}

void append_stop(RVNGPropertyListVector &stops, int32_t position, bool is_decimal)
{
    RVNGPropertyList stop;
    stop.insert("style:position", inches(position));
    stop.insert("style:type", is_decimal ? "char" : "left");
    if (is_decimal) {
        stop.insert("style:char", ".");
    }
    stops.append(stop);
}

// Tabs beyond the last stop go to every eighth column, so a paragraph that has tabs gets stops
// there too.
void insert_tab_stops(RVNGPropertyList &properties, const page::LineGeometry &geometry,
                      bool has_tab)
{
    std::vector<page::TabColumn> columns = geometry.tab_stops;
    std::sort(
        columns.begin(), columns.end(),
        [](const page::TabColumn &a, const page::TabColumn &b) { return a.column < b.column; });
    std::size_t last = columns.empty() ? 0 : columns.back().column;
    const std::size_t step = page::LineLayout::fallback_tab_columns;
    for (last += step - last % step; has_tab && last < geometry.width; last += step) {
        columns.push_back({last, false});
    }
    RVNGPropertyListVector stops;
    for (const page::TabColumn &stop : columns) {
        const auto column = static_cast<int32_t>(stop.column);
        append_stop(stops, column - static_cast<int32_t>(geometry.indent), stop.decimal);
    }
    if (!stops.empty()) {
        properties.insert(tab_stops_property, stops);
    }
}

const char *alignment_name(page::LineAlignment alignment)
{
    switch (alignment) {
    case page::LineAlignment::right: return "end";
    case page::LineAlignment::centre: return "center";
    case page::LineAlignment::left: break;
    }
    return "left";
}

bool has(AttributeSet attributes, AttributeCode code)
{
    return (attributes & attribute_bit(static_cast<int32_t>(code))) != 0;
}

RVNGPropertyList make_span_properties(AttributeSet attributes)
{
    RVNGPropertyList properties;
    properties.insert("style:font-name", font);
    properties.insert("fo:font-size", font_points, librevenge::RVNG_POINT);
    if (has(attributes, AttributeCode::bold)) {
        properties.insert("fo:font-weight", "bold");
    }
    if (has(attributes, AttributeCode::italic)) {
        properties.insert("fo:font-style", "italic");
    }
    if (has(attributes, AttributeCode::underline)) {
        properties.insert("style:text-underline-type", "single");
        properties.insert("style:text-underline-style", "solid");
    }
    if (has(attributes, AttributeCode::superscript)) {
        properties.insert("style:text-position", "super 58%");
    } else if (has(attributes, AttributeCode::subscript)) {
        properties.insert("style:text-position", "sub 58%");
    }
    return properties;
}

} // namespace

RVNGPropertyList page_properties(const page::PageColumns &page, bool has_header, bool has_footer)
{
    const int32_t paper = paper_columns(page);
    RVNGPropertyList properties;
    properties.insert("fo:page-width", inches(paper));
    properties.insert("fo:page-height", page_height);
    properties.insert("fo:margin-left", inches(page.left));
    properties.insert("fo:margin-right",
                      std::max(0.0, inches(paper - 1 - page.right) - spare_width));
    properties.insert("fo:margin-top", vertical_margin(has_header));
    properties.insert("fo:margin-bottom", vertical_margin(has_footer));
    properties.insert("style:print-orientation",
                      inches(paper) > page_height ? "landscape" : "portrait");
    return properties;
}

RevengeStyles::RevengeStyles(bool generator_keeps_styles)
    : generator_keeps_styles_(generator_keeps_styles)
{
}

void RevengeStyles::begin_generator(librevenge::RVNGTextInterface &generator)
{
    generator_ = &generator;
    elements_ = 0;
    header_ = {};
    body_.looks.clear();
    place_ = &header_;
}

void RevengeStyles::begin_body()
{
    place_ = &body_;
}

RVNGPropertyList RevengeStyles::make_properties(const ParagraphLook &look,
                                                const page::PageColumns &page)
{
    const bool is_double = look.line_spacing == VW_DOUBLE_SPACING;
    RVNGPropertyList properties;
    properties.insert("fo:text-align", alignment_name(look.geometry.alignment));
    properties.insert("fo:line-height", is_double ? 2 * line_points : line_points,
                      librevenge::RVNG_POINT);
    insert_margins(properties, look.geometry, page, look.start.continues);
    insert_tab_stops(properties, look.geometry, look.start.has_tab);
    if (look.start.page_break_before) {
        properties.insert("fo:break-before", "page");
    }
    return properties;
}

const RVNGPropertyList &RevengeStyles::paragraph_properties(const Paragraph &paragraph,
                                                            const page::PageColumns &page,
                                                            const ParagraphStart &start)
{
    ParagraphLook look{page::line_geometry(paragraph), paragraph.line_spacing, start};
    auto known = place_->looks.find(look);
    if (known == place_->looks.end()) {
        if (!generator_keeps_styles_ && place_->looks.size() == looks_kept) {
            place_->looks.clear();
        }
        RVNGPropertyList properties = defined_paragraph(make_properties(look, page));
        known = place_->looks.emplace(std::move(look), std::move(properties)).first;
    }
    return known->second;
}

const RVNGPropertyList &RevengeStyles::span_properties(AttributeSet attributes)
{
    const auto known = place_->spans.find(attributes);
    if (known != place_->spans.end()) {
        return known->second;
    }
    place_->spans_in_order.push_back(attributes);
    return place_->spans.emplace(attributes, defined_span(make_span_properties(attributes)))
        .first->second;
}

void RevengeStyles::repeat_spans()
{
    generator_->openParagraph(RVNGPropertyList());
    for (const AttributeSet attributes : body_.spans_in_order) {
        const RVNGPropertyList &reference = body_.spans.at(attributes);
        define_span(make_span_properties(attributes), reference[span_number]->getInt());
        generator_->openSpan(reference);
        generator_->closeSpan();
    }
    generator_->closeParagraph();
}

// What to tell of a style that has these properties.
RVNGPropertyList RevengeStyles::defined_paragraph(RVNGPropertyList properties)
{
    if (!generator_keeps_styles_) {
        return properties;
    }
    properties.insert(paragraph_number, ++last_number_);
    generator_->defineParagraphStyle(properties);
    const RVNGPropertyListVector *stops = properties.child(tab_stops_property);
    elements_ += style_elements + (stops != nullptr ? stops->count() * tab_stop_elements : 0);
    RVNGPropertyList reference;
    reference.insert(paragraph_number, last_number_);
    return reference;
}

RVNGPropertyList RevengeStyles::defined_span(const RVNGPropertyList &properties)
{
    if (!generator_keeps_styles_) {
        return properties;
    }
    define_span(properties, ++last_number_);
    RVNGPropertyList reference;
    reference.insert(span_number, last_number_);
    return reference;
}

void RevengeStyles::define_span(RVNGPropertyList properties, int number)
{
    properties.insert(span_number, number);
    generator_->defineCharacterStyle(properties);
    elements_ += style_elements;
}

} // namespace pfsdoc::writers
