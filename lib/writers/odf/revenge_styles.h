// What a document's pages, paragraphs and runs of text look like, as property lists of
// librevenge.
//
// A page is 11 inches high and 8.5 wide, or as wide as its columns need; ten columns fit an
// inch and six lines do, so text is set in a fixed-pitch font of 12 points. Margins that
// change within the document are paragraph margins, counted from the page's. Tab stops count
// from the paragraph's left indent, as OpenDocument and most others have it.
// Tests: tests/lib/writers/revenge_writer_test.cpp.
#pragma once

#include "lib/page/page_geometry.h"
#include "pfsdoc/paragraph.h"

#include <librevenge/librevenge.h>

#include <compare>
#include <cstddef>
#include <cstdint>
#include <map>
#include <vector>

namespace pfsdoc::writers {

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

    auto operator<=>(const ParagraphStart &) const = default;
};

librevenge::RVNGPropertyList page_properties(const page::PageColumns &page, bool has_header,
                                             bool has_footer);

// Property lists take longer to make than the text between them to convert, and most
// paragraphs look like one of the last few: those are kept. To a generator that keeps styles
// a list is told once, with a number that stands for it from then on.
//
// A document may be told to several such generators, a portion of its body to each. The styles
// of paragraphs are defined for each anew, so no more are kept than a portion has. Those of
// runs are few, and all generators are to give them the same names: they name styles in the
// order in which they are used, so each is first told what the body has used before.
class RevengeStyles {
public:
    explicit RevengeStyles(bool generator_keeps_styles);
    RevengeStyles(const RevengeStyles &) = delete;
    RevengeStyles &operator=(const RevengeStyles &) = delete;

    // The headers and footers follow. The generator must outlive the styles, or the next call.
    void begin_generator(librevenge::RVNGTextInterface &generator);
    // The body follows. A generator keeps the styles of the two in different places, so
    // nothing is kept from one for the other.
    void begin_body();
    // Tells a generator that keeps styles what the runs of the body have used in others before
    // it, in a paragraph without text.
    void repeat_spans();

    // The answers are valid until the next call. All calls are for the same page.
    const librevenge::RVNGPropertyList &paragraph_properties(const Paragraph &paragraph,
                                                             const page::PageColumns &page,
                                                             const ParagraphStart &start);
    const librevenge::RVNGPropertyList &span_properties(AttributeSet attributes);

    // How many elements of a document take as much memory as the styles that this generator
    // has been told.
    uint64_t elements() const
    {
        return elements_;
    }

private:
    // Where a generator does not keep them.
    static constexpr std::size_t looks_kept = 32;

    // All of a paragraph that its properties depend on.
    struct ParagraphLook {
        page::LineGeometry geometry;
        int32_t line_spacing;
        ParagraphStart start;

        auto operator<=>(const ParagraphLook &) const = default;
    };
    // The headers and footers, or the body.
    struct Place {
        std::map<ParagraphLook, librevenge::RVNGPropertyList> looks; // as they are told
        std::map<AttributeSet, librevenge::RVNGPropertyList> spans;
        std::vector<AttributeSet> spans_in_order; // of their first use
    };

    static librevenge::RVNGPropertyList make_properties(const ParagraphLook &look,
                                                        const page::PageColumns &page);
    librevenge::RVNGPropertyList defined_paragraph(librevenge::RVNGPropertyList properties);
    librevenge::RVNGPropertyList defined_span(const librevenge::RVNGPropertyList &properties);
    void define_span(librevenge::RVNGPropertyList properties, int number);

    librevenge::RVNGTextInterface *generator_ = nullptr;
    bool generator_keeps_styles_;
    int last_number_ = 0;
    uint64_t elements_ = 0;
    Place header_;
    Place body_;
    Place *place_ = &header_;
};

} // namespace pfsdoc::writers
