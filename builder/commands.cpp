// A command is recognised by its first word. A word that ends in an asterisk is a complete
// command; a word that ends in a space needs a second one: PAGE for NEW, an answer for JUSTIFY,
// and for the others an argument, which is everything up to the next asterisk.
// Test: tests/builder/commands_test.cpp.
#include "builder/commands.h"
#include "formats/commands.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <string>

namespace pfs_builder {
namespace {

using namespace formats;

constexpr std::array whole_words = {command_n, command_page,  command_yes,
                                    command_y, command_no,    command_center,
                                    command_c, command_right, command_r};
constexpr std::array words_with_argument = {command_printer, command_p,    command_graph,
                                            command_g,       command_join, command_j};
constexpr std::array new_answers = {command_page};
constexpr std::array justify_words = {command_justify, command_jy};
constexpr std::array justify_answers = {command_n, command_yes, command_y, command_no};

bool is_word(std::string_view text, CommandWord word)
{
    return text == command_words[static_cast<std::size_t>(word)];
}

template <std::size_t Size>
bool contains(const std::array<CommandWord, Size> &words, std::string_view text)
{
    return std::any_of(words.begin(), words.end(),
                       [text](CommandWord word) { return is_word(text, word); });
}

// The beginning of `text` up to and including its first space or asterisk, in capitals.
std::string first_word(std::string_view text)
{
    const std::size_t end = text.find_first_of(" *");
    if (end == std::string_view::npos) {
        return "";
    }
    std::string word(text.substr(0, end + 1));
    for (char &letter : word) {
        letter = static_cast<char>(std::toupper(static_cast<unsigned char>(letter)));
    }
    return word;
}

template <std::size_t Size>
Command with_answer(std::string_view after, std::size_t word_length,
                    const std::array<CommandWord, Size> &answers)
{
    const std::string answer = first_word(after.substr(word_length));
    if (!contains(answers, answer)) {
        return {};
    }
    return {CommandState::whole, 1 + word_length + answer.size()};
}

Command with_argument(std::string_view after, std::size_t word_length)
{
    const std::size_t end = after.find(command_mark, word_length);
    if (end == std::string_view::npos) {
        return {CommandState::unclosed, 0};
    }
    return {CommandState::whole, 1 + end + 1};
}

} // namespace

Command find_command(std::string_view text)
{
    const std::string_view after = text.substr(1);
    const std::string word = first_word(after);
    if (contains(whole_words, word)) {
        return {CommandState::whole, 1 + word.size()};
    }
    if (is_word(word, command_new)) {
        return with_answer(after, word.size(), new_answers);
    }
    if (contains(justify_words, word)) {
        return with_answer(after, word.size(), justify_answers);
    }
    if (contains(words_with_argument, word)) {
        return with_argument(after, word.size());
    }
    return {};
}

} // namespace pfs_builder
