#include "batch/sandboxed/test_hook.h"

namespace pfsdoc::batch {

void add_test_hook_option(CLI::App &) {}

void run_test_hook(ByteSource &, Output &) {}

} // namespace pfsdoc::batch
