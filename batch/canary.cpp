#include "batch/canary.h"

namespace pfsdoc {

void add_canary_option(CLI::App &) {}

void sing(ByteSource &, Output &) {}

} // namespace pfsdoc
