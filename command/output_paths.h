// What -o means for the files of one command line: standard output, one file, or a folder with a
// file for each of them. Nothing is opened or made here. Test:
// tests/command/convert_command_test.cpp.
#pragma once

#include "cli/arguments.h"
#include "pfsdoc/error.h"

#include <string>
#include <string_view>
#include <vector>

namespace pfsdoc::cli {

// Whether the output's name is a folder's: it ends with a slash, or one of that name exists.
bool is_folder(const std::string &output);

// Several documents need a folder unless they may be joined on standard output. Errors: usage.
Status check_output(const Arguments &arguments, bool may_be_joined);

// One for each of the arguments' paths, empty for standard output. Below a folder a file is called
// as batch calls it: LETTER.DOC becomes LETTER.DOC.html. Errors: usage, where two have the same.
Result<std::vector<std::string>> output_paths(const Arguments &arguments,
                                              std::string_view extension);

} // namespace pfsdoc::cli
