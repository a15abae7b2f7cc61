// Styles of OpenDocument: what a page, a paragraph and a run of text look like.
//
// A page is 11 inches high and 8.5 wide, or as wide as its columns need; ten columns fit an
// inch and six lines do, so text is set in a fixed-pitch font of 12 points. Margins that
// change within the document are paragraph margins, counted from the page's. Tab stops count
// from the paragraph's left indent, as OpenDocument has it.
//
// A style is named by what it looks like: "Center-double", "Left-first5-page". Tab stops would
// make names of any length, so a style that has some has a number instead of them: "Left-tabs3".
//
// What complicates it is that a document may have as many looks as paragraphs. Each is defined
// once, at its first use, and remembered; when those remembered take too much memory, all are
// forgotten, and a look that comes again is defined again under a name with a number of its
// own. A letter or a book has far fewer.
// Tests: tests/lib/writers/odf_writer_test.cpp, odf_cost_test.cpp.
#pragma once

#include "lib/page/page_geometry.h"
#include "pfsdoc/attribute_names.h"
#include "pfsdoc/output.h"
#include "pfsdoc/paragraph.h"

#include <compare>
#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace pfsdoc::writers {

// The attributes that change how text looks.
inline constexpr AttributeSet attributes_with_look = [] {
    AttributeSet all = 0;
    for (const AttributeName &entry : attribute_names) {
        all |= attribute_bit(entry.code);
    }
    return all;
}();

// Every page has a margin of six lines at the top and at the bottom. A header or footer takes
// the inner ones of it, the empty lines that part it from the text included; more lines than
// that come at the text's expense.
inline constexpr std::size_t margin_lines = 6;
inline constexpr std::size_t header_lines = 3;

// How a paragraph begins, for a part of one that a page break has cut too.
struct ParagraphStart {
    bool page_break_before = false;
    bool continues = false; // lines of the paragraph stand before it
    bool has_tab = false;
};

// All that a paragraph's style consists of. In columns; margins from the page's own.
struct ParagraphLook {
    struct TabStop {
        int32_t column; // from the left indent
        bool is_decimal;

        auto operator<=>(const TabStop &) const = default;
    };

    page::LineAlignment alignment = page::LineAlignment::left;
    bool is_double_spaced = false;
    bool page_break_before = false;
    int32_t left = 0;
    int32_t right = 0;
    int32_t first_line = 0; // from the left
    std::vector<TabStop> tab_stops;

    auto operator<=>(const ParagraphLook &) const = default;
};

// The looks of paragraphs, one after the other: their tab stops are worked out anew only where they
// change.
class ParagraphLooks {
public:
    // Of a paragraph of this geometry on the page, valid until the next call. The number is another
    // where the geometry's tab stops are others.
    const ParagraphLook &of(const page::LineGeometry &geometry, uint64_t tab_stops,
                            int32_t line_spacing, const page::PageColumns &page,
                            const ParagraphStart &start);

private:
    // What the look's tab stops depend on.
    struct TabStopsKey {
        uint64_t tab_stops;
        std::size_t indent;
        std::size_t width;
        bool has_tab;

        bool operator==(const TabStopsKey &) const = default;
    };

    ParagraphLook look_;
    std::optional<TabStopsKey> tab_stops_key_;
};

// The styles of the body's paragraphs and runs, or of those in headers and footers.
class OdfStyles {
public:
    // Bytes that remembered looks may take.
    static constexpr std::size_t most_remembered = std::size_t{256} << 10;

    // Names begin with the prefix. The output, which gets definitions of paragraph styles as
    // they are first used, must outlive the styles.
    OdfStyles(std::string_view prefix, Output &definitions)
        : prefix_(prefix), definitions_(definitions)
    {
    }
    OdfStyles(const OdfStyles &) = delete;
    OdfStyles &operator=(const OdfStyles &) = delete;

    // The style's name, valid until the next call.
    std::string_view paragraph_style(const ParagraphLook &look);
    // Of a run that has some attributes with a look; others are ignored.
    std::string_view text_style(AttributeSet attributes);
    // The definitions of those that have been asked for.
    void append_text_styles(std::string &xml) const;

private:
    using Looks = std::map<ParagraphLook, std::string>; // and names

    std::string new_name(const ParagraphLook &look);
    void define(const ParagraphLook &look, std::string_view name);

    std::string prefix_;
    Output &definitions_;
    Looks looks_;
    Looks::const_iterator last_ = looks_.end();
    std::size_t remembered_bytes_ = 0;
    bool has_forgotten_ = false;
    uint64_t last_number_ = 0;
    std::map<AttributeSet, std::string> text_styles_; // names
};

// Elements that every document has: those of office:styles, and the page with its margins, whose
// name is page_layout_name.
inline constexpr std::string_view page_layout_name = "Page";
void append_common_styles(std::string &xml);
void append_page_layout(std::string &xml, const page::PageColumns &page, bool has_header,
                        bool has_footer);

} // namespace pfsdoc::writers
