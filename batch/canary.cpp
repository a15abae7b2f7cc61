#include "canary.h"

namespace pfsdoc {

void sing(ByteSource &, Output &) {}

} // namespace pfsdoc
