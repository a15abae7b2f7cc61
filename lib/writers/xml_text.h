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

// Appends any bytes as the text of an element. What is not to be shown, of which XML may not hold
// all, is written as \xHH.
void append_xml_text(std::string &xml, std::string_view bytes);

} // namespace pfsdoc::writers
