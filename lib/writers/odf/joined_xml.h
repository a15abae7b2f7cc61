// One XML stream of an OpenDocument document whose body was told in portions, each of them a
// whole document of its own.
//
// What stands before the body is kept of the last portion only, and so is what stands behind
// it: a portion names there what the ones before it have used, by the same names. The styles
// of the body's paragraphs are the exception, as there can be as many of them as paragraphs: a
// portion has those that it uses, and numbers them from the start, S0, S1, S2. So the first
// portion's keep their names, and the others' get new ones, or the name of a style before
// that looks alike. How styles look is remembered for some of them only: one that comes again
// much later may be written twice, by two names.
//
// Styles, and bodies, follow each other in a scratch each, as they must wait for what stands
// before them. Portions after the first begin with a paragraph that the document does not
// have, whose style begins the page; both are left out.
// Test: tests/lib/writers/joined_xml_test.cpp.
#pragma once

#include "lib/writers/odf/odf_xml.h"
#include "lib/writers/odf/scratch.h"
#include "pfsdoc/output.h"

#include <libodfgen/libodfgen.hxx>

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>

namespace pfsdoc::writers {

class JoinedXml final : public OdfDocumentHandler, private Output {
public:
    // Bytes of styles that are remembered from one portion for the next. A letter or a book
    // has fewer.
    static constexpr std::size_t most_remembered = std::size_t{256} << 10;

    // The scratches must outlive the stream.
    JoinedXml(Scratch &styles, Scratch &body) : styles_(styles), body_(body) {}

    void begin_portion();
    void startDocument() override;
    void endDocument() override;
    void startElement(const char *name, const librevenge::RVNGPropertyList &attributes) override;
    void endElement(const char *name) override;
    void characters(const librevenge::RVNGString &text) override;

    // Of the portions so far.
    uint64_t size() const;
    void copy_to(Output &output) const;

private:
    enum class Part { before_styles, style, behind_styles, body, tail };

    // A style of the body's paragraphs.
    struct Style {
        std::string portion_name;
        bool begins_page;
        std::string definition; // with an empty name
    };

    void write(std::string_view bytes) override;
    void begin_style(const librevenge::RVNGPropertyList &attributes);
    void end_style();
    uint64_t add_style(uint64_t number);
    void start_paragraph(const char *name, const librevenge::RVNGPropertyList &attributes);
    bool is_first_portion() const
    {
        return portions_ == 1;
    }
    bool is_left_out() const;

    std::string before_styles_;
    Scratch &styles_;
    std::string behind_styles_;
    Scratch &body_;
    std::string tail_;
    XmlStream xml_{*this};

    // By their definitions.
    std::map<std::string, uint64_t> remembered_;
    std::size_t remembered_bytes_ = 0;
    uint64_t next_number_ = 0;
    std::size_t portions_ = 0;

    // The portion.
    Part part_ = Part::before_styles;
    Style style_;
    NewValues new_names_;        // of styles
    std::size_t depth_ = 0;      // of the elements that are open, the body the outermost
    std::size_t paragraphs_ = 0; // so far
};

} // namespace pfsdoc::writers
