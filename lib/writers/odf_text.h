// The paragraphs of OpenDocument: text:p elements with their text, as XML.
//
// Most text stands for itself, so what lies between bytes that do not is converted as it is.
//
//   attributes  a run that has some is a span; one without is not.
//   spaces      XML readers join the spaces of a run and drop those at either end of a
//               paragraph. So all but the first of a run, and those at the start, are counted
//               in elements. Those at the end show nothing and are left out, and so are those at
//               the start of a line that is not left-aligned; underlined ones are seen, and kept.
//               Which of these a space is shows in what follows, so spaces wait for that.
//
// Time is in proportion to the text, and memory does not depend on it.
// Tests: tests/lib/writers/odf_text_test.cpp.
#pragma once

#include "lib/writers/odf_styles.h"
#include "pfsdoc/code_page.h"
#include "pfsdoc/output.h"
#include "pfsdoc/paragraph.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace pfsdoc::writers {

class OdfText {
public:
    // All three must outlive it.
    OdfText(Output &output, OdfStyles &styles, const CodePage &code_page);
    OdfText(const OdfText &) = delete;
    OdfText &operator=(const OdfText &) = delete;

    void begin_paragraph(std::string_view style);
    // Bytes of the code page.
    void text(std::string_view bytes, AttributeSet attributes);
    // Spaces at the paragraph's start.
    void leading_spaces(std::size_t count);
    void end_paragraph();
    // Hands on what is still held.
    void finish();

private:
    enum class ByteClass : uint8_t { plain, space, tab, markup };

    ByteClass class_of(char byte) const
    {
        return classes_[static_cast<uint8_t>(byte)];
    }
    void enter_span();
    void change_span(AttributeSet attributes);
    std::size_t plain_length(std::string_view bytes) const;
    std::size_t write_special(std::string_view bytes);
    void write_spaces();
    void write_space_element(std::size_t count);
    void hand_on_if_full();

    Output &output_;
    OdfStyles &styles_;
    const CodePage &code_page_;
    std::array<ByteClass, 256> classes_{};

    std::string xml_;
    AttributeSet attributes_ = 0; // of what comes
    AttributeSet span_ = 0;       // open unless 0
    std::size_t spaces_ = 0;      // not written yet
    bool after_space_ = true;     // where another one would be dropped
};

} // namespace pfsdoc::writers
