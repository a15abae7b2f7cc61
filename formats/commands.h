// The words of the commands that stand in a text between asterisks: *NEW PAGE*, *CENTER*. A
// word's last character belongs to it: an asterisk makes it a whole command, a space says that
// more follows.
#pragma once

#include <array>
#include <string_view>

namespace formats {

inline constexpr std::array<std::string_view, 18> command_words = {
    "N*", "NEW ",    "PAGE*", "JUSTIFY ", "JY ", "YES*",  "Y*", "NO*",    "PRINTER ",
    "P ", "CENTER*", "C*",    "GRAPH ",   "G ",  "JOIN ", "J ", "RIGHT*", "R*"};

// Positions in the list.
enum CommandWord : int {
    command_n, // new page; after the justify words the answer no
    command_new,
    command_page,
    command_justify,
    command_jy,
    command_yes,
    command_y,
    command_no,
    command_printer,
    command_p,
    command_center,
    command_c,
    command_graph,
    command_g,
    command_join,
    command_j,
    command_right,
    command_r
};

} // namespace formats
