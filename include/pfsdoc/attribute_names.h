// The meaning of the module's attribute codes. The module only passes the numbers on; these
// interpretations come from the formats' own style letters and their users' notes, and are
// defined here only. Test: tests/lib/writers/trace_test.cpp.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

namespace pfsdoc {

enum class AttributeCode : int32_t {
    bold = 2,
    italic = 3,
    underline = 4,
    subscript = 10,
    superscript = 11
};

struct AttributeName {
    AttributeCode code;
    std::string_view name;
};

inline constexpr std::array<AttributeName, 5> attribute_names = {{
    {AttributeCode::bold, "bold"},
    {AttributeCode::italic, "italic"},
    {AttributeCode::underline, "underline"},
    {AttributeCode::subscript, "subscript"},
    {AttributeCode::superscript, "superscript"},
}};

// The name of a code; empty if its meaning is not known.
constexpr std::string_view attribute_name(int32_t code)
{
    for (const AttributeName &entry : attribute_names) {
        if (static_cast<int32_t>(entry.code) == code) {
            return entry.name;
        }
    }
    return {};
}

} // namespace pfsdoc
