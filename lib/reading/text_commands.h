// What a host makes of the commands embedded in text. The module recognises them and passes
// them on; of their effects it reports page breaks alone. Tests:
// tests/lib/writers/text_writer_test.cpp.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace pfsdoc::reading {

// The VwAlignment that a command asks for, if it is a centre or right-align command. The text
// includes both asterisks; upper and lower case are the same.
std::optional<int32_t> alignment_command(std::string_view text);

// Whether hiding a command loses nothing, because what it asks for is done: those that align,
// and those that begin a page, which come with a page break.
bool command_takes_effect(std::string_view text);

} // namespace pfsdoc::reading
