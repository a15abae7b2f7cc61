#include "lib/reading/text_commands.h"

#include "vs_pfs.h"

#include <algorithm>
#include <array>

namespace pfsdoc::reading {

namespace {

struct AlignmentCommand {
    std::string_view text;
    VwAlignment alignment;
};

constexpr std::array<AlignmentCommand, 4> alignment_commands = {{
    {"*CENTER*", VW_ALIGN_CENTRE},
    {"*C*", VW_ALIGN_CENTRE},
    {"*RIGHT*", VW_ALIGN_RIGHT},
    {"*R*", VW_ALIGN_RIGHT},
}};

constexpr std::array<std::string_view, 2> page_commands = {"*NEW PAGE*", "*N*"};

// Independent of the locale, as the module's own comparison is.
char upper_case(char letter)
{
    return letter >= 'a' && letter <= 'z' ? static_cast<char>(letter - 'a' + 'A') : letter;
}

bool same_but_for_case(std::string_view text, std::string_view upper)
{
    return std::equal(text.begin(), text.end(), upper.begin(), upper.end(),
                      [](char a, char b) { return upper_case(a) == b; });
}

} // namespace

std::optional<int32_t> alignment_command(std::string_view text)
{
    for (const AlignmentCommand &command : alignment_commands) {
        if (same_but_for_case(text, command.text)) {
            return command.alignment;
        }
    }
    return std::nullopt;
}

bool command_takes_effect(std::string_view text)
{
    return alignment_command(text) || std::any_of(page_commands.begin(), page_commands.end(),
                                                  [text](std::string_view command) {
                                                      return same_but_for_case(text, command);
                                                  });
}

} // namespace pfsdoc::reading
