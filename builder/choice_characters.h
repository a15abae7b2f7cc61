// Characters of a First Choice text, of either generation.
#pragma once

#include "builder/document.h"
#include "formats/first_choice.h"

namespace pfs_builder {

namespace choice = formats::choice;

std::string encode_choice_cell(const Cell &cell);

} // namespace pfs_builder
