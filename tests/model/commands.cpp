// Commands between asterisks: looked up word by word, reported, and echoed.
#include "tests/model/parts.h"

#include <array>
#include <string>
#include <string_view>

namespace tests::model {

namespace {

// The terminating character is part of the keyword. A code is a position in this list, from 1.
constexpr std::array<std::string_view, 18> keywords{
    "N*", "NEW ",    "PAGE*", "JUSTIFY ", "JY ", "YES*",  "Y*", "NO*",    "PRINTER ",
    "P ", "CENTER*", "C*",    "GRAPH ",   "G ",  "JOIN ", "J ", "RIGHT*", "R*"};
constexpr int32_t not_a_keyword = 0;
constexpr int32_t short_new_page = 1;
constexpr int32_t new_word = 2;
constexpr int32_t page_word = 3;
constexpr int32_t justify_word = 4;
constexpr int32_t short_justify_word = 5;
constexpr int32_t yes_answer = 6;
constexpr int32_t short_yes_answer = 7;
constexpr int32_t no_answer = 8;
constexpr std::size_t longest_word = 9;

bool cannot_be_in_a_word(int32_t byte)
{
    return (byte >= 0x00 && byte <= 0x03) || byte == record_mark || byte == document_end;
}

int32_t code_of(const std::string &word)
{
    for (std::size_t i = 0; i < keywords.size(); ++i) {
        if (word == keywords[i]) {
            return static_cast<int32_t>(i) + 1;
        }
    }
    return not_a_keyword;
}

int32_t PfsGetCommand(Model &model)
{
    std::string word;
    while (word.size() < longest_word) {
        const int32_t byte = model.text.get();
        if (cannot_be_in_a_word(byte)) {
            return not_a_keyword;
        }
        const bool lower_case = byte >= 'a' && byte <= 'z';
        word += static_cast<char>(lower_case ? byte - ('a' - 'A') : byte);
        if (byte == space || byte == star) {
            break;
        }
    }
    return code_of(word);
}

enum class Command { none, new_page, other };

Command read_command(Model &model)
{
    const int32_t first = PfsGetCommand(model);
    switch (first) {
    case not_a_keyword: return Command::none;
    case short_new_page: return Command::new_page;
    case new_word: return PfsGetCommand(model) == page_word ? Command::new_page : Command::none;
    case justify_word:
    case short_justify_word: break;
    default: return Command::other;
    }
    const int32_t answer = PfsGetCommand(model);
    const bool known = answer == short_new_page || answer == yes_answer ||
                       answer == short_yes_answer || answer == no_answer;
    return known ? Command::other : Command::none;
}

void echo(Model &model, uint8_t byte, int16_t &column)
{
    model.report(VW_SO_SPECIAL_CHARACTER, {byte, special_type});
    count_up(column);
}

} // namespace

bool PfsTextCommand(Model &model, int16_t &column)
{
    const uint32_t after_star = model.text.tell();
    const Command command = read_command(model);
    if (command == Command::none) {
        model.text.seek(after_star);
        return false;
    }
    if (command == Command::new_page) {
        model.report(VW_SO_PAGE_BREAK, {4, 0});
    }
    model.text.seek(after_star);
    echo(model, star, column);
    uint8_t byte = 0;
    do {
        byte = model.text.next();
        echo(model, byte, column);
    } while (byte != star);
    return true;
}

} // namespace tests::model
