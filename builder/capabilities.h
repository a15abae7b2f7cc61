// What each kind supports.
#pragma once

#include "builder/document.h"

namespace pfs_builder {

// The first element of a document that its kind does not support; if there is none, the encoder
// can store all of it.
std::optional<Fault> check_capabilities(const Document &document);

} // namespace pfs_builder
