// Commands embedded in the text, typed between asterisks: *NEW PAGE*, *JUSTIFY YES*.
//
// The words after a '*' are looked up in the table of 18 keywords. A keyword's last
// character belongs to it: '*' makes it a whole command, a space says that more follows.
// If the words are a command, its text is echoed to the host up to the closing '*', byte by
// byte as stored in the file, and a new-page command is reported as a page break first.
// If not, the stream goes back to just after the opening '*', which is then plain text.
//
// The echo has no length limit: a command that is never closed runs on to the next '*' or
// to the end of the data. Test: tests/module/text_commands_test.cpp.
#include "formats/commands.h"
#include "vs_pfs/formatting.h"

#include <algorithm>
#include <string_view>

namespace vs_pfs {
namespace {

constexpr int longest_keyword_read = 9;

// A keyword's code is its position in the table, from 1.
constexpr int32_t command_none = 0;
constexpr int32_t code_of(formats::CommandWord word)
{
    return word + 1;
}

constexpr bool ends_search(int32_t byte)
{
    switch (byte) {
    case 0x00:
    case 0x01:
    case 0x02:
    case 0x03:
    case 0x07:
    case 0x0E:
    case end_of_data: return true;
    default: return false;
    }
}

constexpr bool ends_keyword(int32_t byte)
{
    return byte == ' ' || byte == command_mark;
}

constexpr char to_upper(int32_t byte)
{
    return static_cast<char>(byte >= 'a' && byte <= 'z' ? byte - 'a' + 'A' : byte);
}

int32_t find_keyword(std::string_view text)
{
    const auto &words = formats::command_words;
    const auto *found = std::find(words.begin(), words.end(), text);
    return found != words.end() ? static_cast<int32_t>(found - words.begin()) + 1 : command_none;
}

bool is_justify_answer(int32_t command)
{
    switch (command) {
    case code_of(formats::command_n):
    case code_of(formats::command_yes):
    case code_of(formats::command_y):
    case code_of(formats::command_no): return true;
    default: return false;
    }
}

enum class Meaning { no_command, page_break, echo_only };

// Reads the command's words, up to two of them.
Meaning read_command(VwCharStream *stream, VwInstance *instance)
{
    char buffer[command_buffer_size];
    switch (PfsGetCommand(stream, buffer, instance)) {
    case command_none: return Meaning::no_command;
    case code_of(formats::command_n): return Meaning::page_break;
    case code_of(formats::command_new):
        return PfsGetCommand(stream, buffer, instance) == code_of(formats::command_page)
                   ? Meaning::page_break
                   : Meaning::no_command;
    case code_of(formats::command_justify):
    case code_of(formats::command_jy):
        return is_justify_answer(PfsGetCommand(stream, buffer, instance)) ? Meaning::echo_only
                                                                          : Meaning::no_command;
    default: return Meaning::echo_only;
    }
}

void echo_byte(int32_t byte, int16_t *column, VwInstance *instance)
{
    put_special_character(instance, byte);
    *column = static_cast<int16_t>(*column + 1);
}

// Echoes the command from its opening '*', which has been read, to its closing one.
void echo_command(VwCharStream *stream, int16_t *column, VwInstance *instance)
{
    int32_t byte = command_mark;
    echo_byte(byte, column, instance);
    do {
        byte = VwCharGet(stream);
        if (byte == end_of_data) {
            return;
        }
        echo_byte(byte, column, instance);
    } while (byte != command_mark);
}

} // namespace

int32_t PfsGetCommand(VwCharStream *stream, char *buffer, VwInstance *)
{
    int length = 0;
    bool terminated = false;
    while (length < longest_keyword_read && !terminated) {
        const int32_t byte = VwCharGet(stream);
        if (ends_search(byte)) {
            return command_none;
        }
        buffer[length++] = to_upper(byte);
        terminated = ends_keyword(byte);
    }
    buffer[length] = '\0';
    return find_keyword({buffer, static_cast<std::size_t>(length)});
}

int32_t PfsTextCommand(VwCharStream *stream, int16_t *column, VwInstance *instance)
{
    const uint32_t start = VwCharTell(stream);
    const Meaning meaning = read_command(stream, instance);
    if (meaning == Meaning::page_break) {
        put_page_break(instance); // with the stream after the command
    }
    VwCharSeek(stream, start, seek_absolute);
    if (meaning == Meaning::no_command) {
        return 0;
    }
    echo_command(stream, column, instance);
    return 1;
}

} // namespace vs_pfs
