// What each kind can say.
#pragma once

#include "builder/document.h"

namespace pfs_builder {

// The first thing that a document says and that its kind cannot. After this its encoder can
// store all of it.
std::optional<Fault> check_capabilities(const Document &document);

} // namespace pfs_builder
