// What a file is: decided by its content alone, at the offsets that the module itself checks, so
// that a kind is found here exactly if the module opens the file. Names and dates are ignored:
// these files have any extension or none. Test: tests/lib/reading/identify_test.cpp.
#pragma once

#include "pfsdoc/byte_source.h"
#include "pfsdoc/error.h"
#include "pfsdoc/export.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace pfsdoc {

enum class DocumentKind {
    write_a,
    write_b,
    professional_write_1,
    professional_write_2,
    writing_assistant,
    first_choice_2,
    first_choice_3
};

constexpr bool is_first_choice(DocumentKind kind)
{
    return kind == DocumentKind::first_choice_2 || kind == DocumentKind::first_choice_3;
}

// The module's number for a kind, 1012 to 1058, and its name for that number.
PFSDOC_API int32_t file_id(DocumentKind kind);
PFSDOC_API std::string_view display_name(DocumentKind kind);

struct Identity {
    DocumentKind kind;
    std::string basis; // the evidence: what was found at which offset
};

// Errors: input, and not_a_document, whose text says what the file is, if that is known.
PFSDOC_API Result<Identity> identify(ByteSource &source);

} // namespace pfsdoc
