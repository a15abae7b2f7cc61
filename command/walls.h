// Reads a document in a process of its own that has entered the sandbox, where that is asked for.
// What it needs is open before; it writes the output, and what it says of it is a record of a fixed
// size. Test: tests/command/walls_test.cpp.
#pragma once

#include "cli/arguments.h"
#include "command/conversion.h"
#include "sandbox/mode.h"

#include <functional>

namespace pfsdoc::cli {

// What --sandbox asks for; off unless given, since it would double a letter's time.
sandbox::Mode wanted_walls(const Arguments &arguments);

// As convert_document, in the walls.
Converted convert_in_walls(sandbox::Mode mode, std::unique_ptr<ByteSource> source,
                           const Module &module, const std::string &title,
                           const Conversion &conversion, base::DescriptorOutput &output);

// Any other work that writes to this output only, and opens nothing.
Status work_in_walls(sandbox::Mode mode, base::DescriptorOutput &output,
                     const std::function<Status()> &work);

} // namespace pfsdoc::cli
