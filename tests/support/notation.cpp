#include "tests/support/notation.h"

#include <cctype>
#include <sstream>
#include <stdexcept>

namespace tests {

namespace {

[[noreturn]] void reject(std::string_view notation, const std::string &why)
{
    throw std::invalid_argument(why + " in notation: " + std::string(notation));
}

// Removes a quoted text from the front of `rest`, including the quotes.
std::string take_quoted(std::string_view &rest, std::string_view notation)
{
    const std::size_t end = rest.find('\'', 1);
    if (end == std::string_view::npos) {
        reject(notation, "open quote");
    }
    std::string quoted(rest.substr(1, end - 1));
    rest.remove_prefix(end + 1);
    return quoted;
}

char take_hex_pair(std::string_view &rest, std::string_view notation)
{
    if (rest.size() < 2 || std::isxdigit(static_cast<unsigned char>(rest[0])) == 0 ||
        std::isxdigit(static_cast<unsigned char>(rest[1])) == 0) {
        reject(notation, "no hex pair");
    }
    const int value = std::stoi(std::string(rest.substr(0, 2)), nullptr, 16);
    rest.remove_prefix(2);
    return static_cast<char>(value);
}

std::size_t take_repeat(std::string_view &rest)
{
    if (rest.empty() || rest.front() != 'x') {
        return 1;
    }
    std::size_t digits = 0;
    const std::size_t count = std::stoul(std::string(rest.substr(1)), &digits);
    rest.remove_prefix(1 + digits);
    return count;
}

std::string trimmed(std::string_view text)
{
    const std::size_t first = text.find_first_not_of(" \t");
    if (first == std::string_view::npos) {
        return {};
    }
    return std::string(text.substr(first, text.find_last_not_of(" \t") - first + 1));
}

// Splits at '|' and new lines outside quotes.
std::vector<std::string> parts_of(std::string_view notation)
{
    std::vector<std::string> parts(1);
    bool quoted = false;
    for (const char c : notation) {
        quoted = quoted != (c == '\'');
        if (!quoted && (c == '|' || c == '\n')) {
            parts.emplace_back();
        } else {
            parts.back() += c;
        }
    }
    return parts;
}

Call numbered_call(const std::string &part)
{
    std::istringstream numbers(part);
    Call call;
    numbers >> call.id;
    int32_t argument = 0;
    while (call.count < 4 && numbers >> argument) {
        call.arguments[static_cast<std::size_t>(call.count++)] = argument;
    }
    if (call.id == 0 || (numbers.clear(), !(numbers >> std::ws).eof())) {
        reject(part, "no call");
    }
    return call;
}

bool is_text(const Call &call)
{
    const int32_t byte = call.arguments[0];
    const bool printable = byte >= 0x20 && byte < 0x7F && byte != '\'';
    return printable && (call.id == VW_SO_CHARACTER ||
                         (call.id == VW_SO_SPECIAL_CHARACTER && call.arguments[1] == 7));
}

std::string numbers_of(const Call &call)
{
    std::string line = std::to_string(call.id);
    for (int32_t i = 0; i < call.count; ++i) {
        line += ' ' + std::to_string(call.arguments[static_cast<std::size_t>(i)]);
    }
    return line;
}

std::size_t first_difference(const Calls &one, const Calls &other)
{
    std::size_t i = 0;
    while (i < one.size() && i < other.size() && one[i] == other[i]) {
        ++i;
    }
    return i;
}

} // namespace

std::string bytes(std::string_view notation)
{
    std::string result;
    std::string_view rest = notation;
    while (!rest.empty()) {
        if (std::isspace(static_cast<unsigned char>(rest.front())) != 0) {
            rest.remove_prefix(1);
            continue;
        }
        const std::string unit = rest.front() == '\''
                                     ? take_quoted(rest, notation)
                                     : std::string(1, take_hex_pair(rest, notation));
        for (std::size_t n = take_repeat(rest); n > 0; --n) {
            result += unit;
        }
    }
    return result;
}

Calls calls(std::string_view notation)
{
    Calls result;
    for (const std::string &raw : parts_of(notation)) {
        const std::string part = trimmed(raw);
        if (part.empty()) {
            continue;
        }
        const bool special = part.front() == '*';
        std::string_view rest = part;
        rest.remove_prefix(special ? 1 : 0);
        if (rest.front() != '\'') {
            result.push_back(numbered_call(part));
            continue;
        }
        for (const char c : take_quoted(rest, part)) {
            const int32_t byte = static_cast<unsigned char>(c);
            result.push_back(special ? Call{VW_SO_SPECIAL_CHARACTER, 2, {byte, 7}}
                                     : Call{VW_SO_CHARACTER, 1, {byte}});
        }
    }
    return result;
}

std::string text_of(const Calls &calls)
{
    std::string text;
    for (std::size_t i = 0; i < calls.size();) {
        if (!is_text(calls[i])) {
            text += numbers_of(calls[i++]) + '\n';
            continue;
        }
        const int32_t id = calls[i].id;
        text += id == VW_SO_SPECIAL_CHARACTER ? "*'" : "'";
        for (; i < calls.size() && calls[i].id == id && is_text(calls[i]); ++i) {
            text += static_cast<char>(calls[i].arguments[0]);
        }
        text += "'\n";
    }
    return text;
}

::testing::AssertionResult matches(const Calls &recorded, std::string_view notation)
{
    const Calls expected = calls(notation);
    if (recorded == expected) {
        return ::testing::AssertionSuccess();
    }
    const std::size_t at = first_difference(recorded, expected);
    auto failure = ::testing::AssertionFailure();
    failure << "first difference at call " << at << ": "
            << (at < recorded.size() ? numbers_of(recorded[at]) : "nothing more") << " instead of "
            << (at < expected.size() ? numbers_of(expected[at]) : "nothing more") << "\nrecorded:\n"
            << text_of(recorded) << "expected:\n"
            << text_of(expected);
    return failure;
}

} // namespace tests
