// The commands between asterisks in a text: *NEW PAGE*, *CENTER*, *PRINTER 27,15*.
#pragma once

#include <cstddef>
#include <string_view>

namespace pfs_builder {

inline constexpr char command_mark = '*';

enum class CommandState {
    none,    // the asterisk is a plain character
    whole,   // a command, closed by its second asterisk
    unclosed // a command whose argument is never closed: it would swallow the text
};

struct Command {
    CommandState state = CommandState::none;
    std::size_t length = 0; // of a whole one, including both asterisks
};

// The meaning of the asterisk that the text begins with.
Command find_command(std::string_view text);

} // namespace pfs_builder
