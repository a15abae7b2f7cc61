// One XML stream of an OpenDocument document whose body was told in portions, each of them a
// whole document of its own.
//
// What stands before the body names the styles that the body uses, and each portion names all
// that the ones before it have used, by the same names: so it is kept of the last portion
// only, and so is what stands behind the body. The bodies follow each other in a scratch, as
// they must wait for what stands before them. The first paragraphs of a portion can be there
// for their styles alone; those are left out. Test: tests/writers/joined_xml_test.cpp.
#pragma once

#include "odf_xml.h"
#include "output.h"
#include "scratch.h"

#include <libodfgen/libodfgen.hxx>

#include <cstddef>
#include <string>
#include <string_view>

namespace pfsdoc {

class JoinedXml final : public OdfDocumentHandler, private Output {
public:
    // The scratch must outlive the stream.
    explicit JoinedXml(Scratch &body) : body_(body) {}

    // A portion whose body begins with these many paragraphs that are to be left out, and has
    // others too, unless it is the only one.
    void begin_portion(std::size_t repeated_paragraphs);
    void startDocument() override;
    void endDocument() override;
    void startElement(const char *name, const librevenge::RVNGPropertyList &attributes) override;
    void endElement(const char *name) override;
    void characters(const librevenge::RVNGString &text) override;

    // Of the portions so far.
    void copy_to(Output &output) const;

private:
    enum class Part { head, body, tail };

    void write(std::string_view bytes) override;
    void begin_paragraph();
    bool is_left_out() const;

    std::string head_;
    Scratch &body_;
    std::string tail_;
    XmlStream xml_{*this};

    // The portion.
    Part part_ = Part::head;
    std::size_t depth_ = 0; // of the elements that are open, the body the outermost
    std::size_t repeated_paragraphs_ = 0;
    std::size_t paragraphs_ = 0; // so far
};

} // namespace pfsdoc
