// The seven kinds of documents: the number by which hosts know each, its name, and its entry
// in the PRONOM registry, which knows no IBM Writing Assistant.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

namespace formats {

struct Kind {
    uint16_t file_id;
    std::string_view name;
    std::string_view pronom_id;
};

// Positions in the list.
enum KindIndex : uint8_t {
    write_a,
    write_b,
    professional_write_1,
    professional_write_2,
    writing_assistant,
    first_choice_2,
    first_choice_3
};

inline constexpr std::array<Kind, 7> kinds = {{
    {1012, "PFS: WRITE A", "fmt/1414"},
    {1013, "PFS: WRITE B", "fmt/1414"},
    {1014, "Professional Write 1", "x-fmt/353"},
    {1015, "Professional Write 2", "x-fmt/353"},
    {1016, "IBM Writing Assistant", ""},
    {1017, "PFS: First Choice 2.0", "fmt/1282"},
    {1058, "PFS: First Choice 3.0", "fmt/1283"},
}};

} // namespace formats
