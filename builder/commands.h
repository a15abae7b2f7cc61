// The commands that stand in a text between asterisks: *NEW PAGE*, *CENTER*, *PRINTER 27,15*.
#pragma once

#include <cstddef>
#include <string_view>

namespace pfs_builder {

inline constexpr char command_mark = '*';

enum class CommandState {
    none,    // the asterisk is a plain character
    whole,   // a command, closed by its second asterisk
    unclosed // a command whose argument never meets an asterisk: it would swallow the text
};

struct Command {
    CommandState state = CommandState::none;
    std::size_t length = 0; // of a whole one, both asterisks included
};

// What the text makes of the asterisk that it begins with.
Command find_command(std::string_view text);

} // namespace pfs_builder
