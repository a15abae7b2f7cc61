// The formats' tables of kinds, by the library's name for a kind.
#pragma once

#include "formats/header_fields.h"
#include "formats/kinds.h"
#include "pfsdoc/identify.h"

namespace pfsdoc::reading {

constexpr formats::KindIndex index_of(DocumentKind kind)
{
    return static_cast<formats::KindIndex>(kind);
}
static_assert(index_of(DocumentKind::write_a) == formats::write_a &&
              index_of(DocumentKind::write_b) == formats::write_b &&
              index_of(DocumentKind::professional_write_1) == formats::professional_write_1 &&
              index_of(DocumentKind::professional_write_2) == formats::professional_write_2 &&
              index_of(DocumentKind::writing_assistant) == formats::writing_assistant &&
              index_of(DocumentKind::first_choice_2) == formats::first_choice_2 &&
              index_of(DocumentKind::first_choice_3) == formats::first_choice_3);

constexpr const formats::Kind &facts_of(DocumentKind kind)
{
    return formats::kinds[index_of(kind)];
}

constexpr formats::KindSet kind_bit(DocumentKind kind)
{
    return formats::kind_bit(index_of(kind));
}

} // namespace pfsdoc::reading
