// A document's character set. Documents do not record theirs: code page 437 unless the user
// knows better.
//
// All 256 bytes are characters: DOS code pages have glyphs where other character sets have
// control codes, so converted text cannot control a terminal. A caller that treats a byte as a
// control code, such as the tab, removes it before converting. Byte 0 is the empty glyph and
// becomes a space. Tests: tests/lib/base/code_page_test.cpp.
#pragma once

#include "pfsdoc/error.h"
#include "pfsdoc/export.h"

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

namespace pfsdoc {

class PFSDOC_API CodePage {
public:
    // The character of an undefined byte: U+FFFD.
    static constexpr char16_t replacement = u'\uFFFD';

    static const CodePage &ibm437();
    // By a number ("850") or any name that iconv knows ("CP850", "ISO-8859-1"). Fails with
    // ErrorKind::usage if the name is unknown or the set is not a single-byte extension of ASCII.
    static Result<CodePage> named(const std::string &name);

    const std::string &name() const
    {
        return name_;
    }
    char16_t character(uint8_t byte) const
    {
        return characters_[byte];
    }
    bool defines(uint8_t byte) const
    {
        return characters_[byte] != replacement;
    }
    // Whether all bytes are defined.
    bool is_complete() const
    {
        return is_complete_;
    }
    // Appends the bytes' characters as UTF-8.
    void append_utf8(std::string &utf8, std::string_view bytes) const;

private:
    struct Encoded {
        std::array<char, 3> bytes;
        uint8_t length;
    };

    CodePage(std::string name, const std::array<char16_t, 256> &characters);
    static Encoded encode(unsigned character);

    std::string name_;
    std::array<char16_t, 256> characters_;
    std::array<Encoded, 256> encoded_;
    bool is_complete_;
};

} // namespace pfsdoc
