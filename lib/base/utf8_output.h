// Lines of the documents' bytes in, UTF-8 in large chunks out.
// Tests: tests/lib/writers/text_limits_test.cpp.
#pragma once

#include "pfsdoc/code_page.h"
#include "pfsdoc/output.h"

#include <cstddef>
#include <string>
#include <string_view>

namespace pfsdoc::base {

class Utf8Output {
public:
    // Large enough that a write is worth its cost.
    static constexpr std::size_t chunk_size = 65536;

    // Both must outlive it.
    explicit Utf8Output(Output &output, const CodePage &code_page = CodePage::ibm437());

    void spaces(std::size_t count);
    // Bytes of the code page.
    void text(std::string_view bytes);
    // Text that is UTF-8 already.
    void utf8(std::string_view encoded);
    void line_end();
    void form_feed();
    // An empty line before whatever comes next, if anything comes. To be called between
    // lines; after a form feed it is the new page's first line.
    void separate();
    // Ends a last line that is still open, and hands everything on.
    void finish();

    // Nothing was written yet.
    bool empty() const;

private:
    void before_writing();
    void hand_on();

    Output &output_;
    const CodePage &code_page_;
    std::string buffer_;
    bool empty_ = true;
    bool line_open_ = false; // the last byte written was no line end
    bool separator_due_ = false;
};

} // namespace pfsdoc::base
