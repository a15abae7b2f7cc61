#include "batch/canary.h"

namespace pfsdoc::batch {

void add_canary_option(CLI::App &) {}

void sing(ByteSource &, Output &) {}

} // namespace pfsdoc::batch
