// XML as a byte stream: what libodfgen calls with elements and characters. Everything is
// escaped here, attributes too, so that no text of a document can be taken for markup. An
// element without content is one tag. Test: tests/lib/writers/odf_xml_test.cpp.
#pragma once

#include "pfsdoc/output.h"

#include <libodfgen/libodfgen.hxx>

#include <functional>
#include <map>
#include <string>
#include <string_view>

namespace pfsdoc::writers {

// Values that an attribute has, and what is written in their place.
struct NewValues {
    std::string_view attribute;
    std::map<std::string, std::string, std::less<>> values;

    std::string_view value_of(std::string_view name, std::string_view value) const;
};

class XmlStream final : public OdfDocumentHandler {
public:
    // The output must outlive the stream.
    explicit XmlStream(Output &output);

    void startDocument() override;
    void endDocument() override;
    void startElement(const char *name, const librevenge::RVNGPropertyList &attributes) override;
    void start_element(const char *name, const librevenge::RVNGPropertyList &attributes,
                       const NewValues &changed);
    void endElement(const char *name) override;
    void characters(const librevenge::RVNGString &text) override;
    // Everything so far is with the output after it. The element that was started last can
    // have no end of one tag any more.
    void flush();

private:
    void end_tag();
    void append_attribute(std::string_view name, std::string_view value);
    void append_escaped(std::string_view text);
    void write_if_full();

    Output &output_;
    std::string buffer_;
    bool tag_open_ = false;
};

} // namespace pfsdoc::writers
