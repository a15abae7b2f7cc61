// What follows a '*': compared with a simple reference reader of the same bytes in memory. Input
// bytes below 18 stand for the keywords, so that commands are frequent.
#include "formats/commands.h"
#include "fuzz/fuzz_host.h"
#include "fuzz/fuzz_input.h"
#include "vs_pfs/formatting.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr int16_t start_column = 32760; // so that the column wraps
constexpr std::size_t longest_keyword = 9;
constexpr auto words = formats::command_words;
constexpr const char *search_enders = "\x01\x02\x03\x07\x0E";

std::string text_of(fuzz::Input &input)
{
    std::string text;
    while (!input.empty()) {
        const uint8_t byte = input.byte();
        if (byte < words.size()) {
            text += words[byte];
        } else {
            text += static_cast<char>(byte == words.size() ? 0 : byte);
        }
    }
    return text;
}

// The keyword at `position`, from 1, or 0; the position moves past it.
int plain_keyword(const std::string &text, std::size_t &position)
{
    std::string word;
    while (word.size() < longest_keyword) {
        if (position >= text.size() || text[position] == '\0' ||
            std::strchr(search_enders, text[position]) != nullptr) {
            return 0;
        }
        const char byte = text[position++];
        word += byte >= 'a' && byte <= 'z' ? static_cast<char>(byte - 'a' + 'A') : byte;
        if (byte == ' ' || byte == '*') {
            break;
        }
    }
    const auto *const found = std::find(words.begin(), words.end(), word);
    return found != words.end() ? static_cast<int>(found - words.begin()) + 1 : 0;
}

// The keywords by their index in the table, from 1, as far as the grammar distinguishes them.
enum Keyword : int {
    no_keyword = 0,
    keyword_n = 1,
    keyword_new = 2,
    keyword_page = 3,
    keyword_justify = 4,
    keyword_jy = 5,
    keyword_yes = 6,
    keyword_no = 8
};

bool is_answer(int code)
{
    return code == keyword_n || (code >= keyword_yes && code <= keyword_no);
}

enum class Plain { none, echo, page };

Plain plain_command(const std::string &text)
{
    std::size_t position = 0;
    switch (plain_keyword(text, position)) {
    case no_keyword: return Plain::none;
    case keyword_n: return Plain::page;
    case keyword_new:
        return plain_keyword(text, position) == keyword_page ? Plain::page : Plain::none;
    case keyword_justify:
    case keyword_jy: return is_answer(plain_keyword(text, position)) ? Plain::echo : Plain::none;
    default: return Plain::echo;
    }
}

std::vector<fuzz::Call> plain_calls(const std::string &text, Plain command)
{
    std::vector<fuzz::Call> calls;
    if (command == Plain::none) {
        return calls;
    }
    if (command == Plain::page) {
        calls.push_back({VW_SO_PAGE_BREAK, 2, {4, 0}});
    }
    const std::string echo =
        '*' + text.substr(0, text.find('*')) + (text.find('*') == std::string::npos ? "" : "*");
    for (const char byte : echo) {
        calls.push_back({VW_SO_SPECIAL_CHARACTER, 2, {static_cast<uint8_t>(byte), 7}});
    }
    return calls;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, std::size_t size)
{
    fuzz::Input input(data, size);
    const uint32_t most_per_read = 1 + input.byte() % 16;
    const std::string text = text_of(input);
    fuzz::Host host(text);
    host.file.most_per_read = most_per_read;
    host.guard.read_begins();
    const Plain command = plain_command(text);
    const auto calls = plain_calls(text, command);
    int16_t column = start_column;
    const int32_t result = vs_pfs::PfsTextCommand(host.stream, &column, host.instance);
    const std::size_t echoed = calls.size() - (command == Plain::page ? 1 : 0);
    fuzz::require(result == (command == Plain::none ? 0 : 1), "not the result");
    fuzz::require(host.recorded == calls, "not the calls");
    fuzz::require(column == static_cast<int16_t>(start_column + static_cast<int>(echoed)),
                  "not the column");
    const bool open = command != Plain::none && text.find('*') == std::string::npos;
    const std::size_t position = command == Plain::none ? 0 : open ? echoed : echoed - 1;
    fuzz::require(VwCharTell(host.stream) == position, "not the position");
    return 0;
}
