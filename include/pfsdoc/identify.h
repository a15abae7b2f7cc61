// What a file is: decided by its content alone, at the places that the module itself looks
// at, so that an answer here and a successful open are the same thing. Names and dates are
// worth nothing: these files come with any extension or none. Test:
// tests/lib/reading/identify_test.cpp.
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

// The module's number for a kind, and the name that it gives to that number.
PFSDOC_API int32_t file_id(DocumentKind kind);
PFSDOC_API std::string_view display_name(DocumentKind kind);

struct Identity {
    DocumentKind kind;
    std::string basis; // what was found where
};

// For a file of another kind the error says what it is, as far as that can be told.
PFSDOC_API Result<Identity> identify(ByteSource &source);

} // namespace pfsdoc
