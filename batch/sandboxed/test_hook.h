// Where the tests put a reader that has been taken over: called with each document before it
// is read, in the worker, behind the sandbox. The program that is installed has one that does
// nothing (test_hook.cpp); that of the tests does what the document's text asks for, or what the
// option --canary says (tests/batch/run/canaries.cpp).
#pragma once

#include "pfsdoc/byte_source.h"
#include "pfsdoc/output.h"

#include <CLI/CLI.hpp>

namespace pfsdoc::batch {

void add_test_hook_option(CLI::App &app);
void run_test_hook(ByteSource &document, Output &output);

} // namespace pfsdoc::batch
