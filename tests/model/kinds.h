// The kinds of documents that are generated and compared, by how they are read.
#pragma once

#include <array>
#include <cstdint>

namespace tests::model {

enum class Kind : uint8_t {
    write_1,           // format type 1
    write_2,           // format type 2
    assistant,         // format type 3
    professional_1,    // format type 4
    professional_2,    // format type 5
    choice_byte_ruler, // First Choice before generation 2
    choice_bit_ruler,  // First Choice 2
    choice_3,          // First Choice 3
};

constexpr std::array<Kind, 8> all_kinds{
    Kind::write_1,        Kind::write_2,           Kind::assistant,        Kind::professional_1,
    Kind::professional_2, Kind::choice_byte_ruler, Kind::choice_bit_ruler, Kind::choice_3};

constexpr const char *name_of(Kind kind)
{
    constexpr std::array<const char *, 8> names{
        "write_1",        "write_2",           "assistant",        "professional_1",
        "professional_2", "choice_byte_ruler", "choice_bit_ruler", "choice_3"};
    return names[static_cast<std::size_t>(kind)];
}

constexpr bool is_choice(Kind kind)
{
    return kind >= Kind::choice_byte_ruler;
}

} // namespace tests::model
