// What programs say to the person who started them. Test: tests/command/command_test.cpp.
#pragma once

#include "pfsdoc/error.h"

#include <string>
#include <string_view>

namespace pfsdoc::cli {

// One line on standard error, `pfsdoc: FILE: problem (at byte N); remedy`, and the error's exit
// code. The file may be empty: the error is of none.
int report(const std::string &file, const Error &error);

// One line on standard error, `pfsdoc: LINE`.
void report_line(const std::string &line);

// Writes a text, such as a help text, to standard output; the exit code.
int print(std::string_view text);

} // namespace pfsdoc::cli
