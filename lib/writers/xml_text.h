// Text from outside in XML, a title above all: escaped, and without what XML cannot hold.
// Test: tests/lib/writers/odf_writer_test.cpp.
#pragma once

#include <string>
#include <string_view>

namespace pfsdoc::writers {

// Empty for a character that stands for itself in an element's text.
constexpr std::string_view xml_entity(char character)
{
    switch (character) {
    case '&': return "&amp;";
    case '<': return "&lt;";
    case '>': return "&gt;";
    default: return {};
    }
}

// Appends any bytes as the text of an element. Control characters, and bytes that are not
// UTF-8, are written as \xNN; U+FFFE and U+FFFF, which no XML may hold, become U+FFFD.
void append_xml_text(std::string &xml, std::string_view bytes);

} // namespace pfsdoc::writers
