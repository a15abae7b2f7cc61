#include "cli/number_checks.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cctype>
#include <charconv>
#include <optional>
#include <string_view>
#include <system_error>

namespace pfsdoc::cli {

namespace {

constexpr std::string_view digits = "0123456789";

[[noreturn]] void refuse(const std::string &text, const std::string &why)
{
    throw CLI::ValidationError(text + " " + why);
}

std::string in_words(double number)
{
    std::string words = std::to_string(number);
    words.erase(words.find_last_not_of('0') + 1);
    words.erase(words.find_last_not_of('.') + 1);
    return words;
}

// How many bytes a unit has; 0 for one that is not known.
uint64_t bytes_of_unit(std::string unit)
{
    std::transform(unit.begin(), unit.end(), unit.begin(),
                   [](unsigned char letter) { return static_cast<char>(std::tolower(letter)); });
    constexpr std::string_view letters = "kmgtpe";
    constexpr unsigned bits_per_step = 10;
    const std::size_t step = letters.find(unit.empty() ? 'b' : unit.front());
    if (step == std::string_view::npos) {
        return unit.empty() || unit == "b" ? 1 : 0;
    }
    const std::string_view rest = std::string_view(unit).substr(1);
    const bool is_unit = rest.empty() || rest == "b" || rest == "i" || rest == "ib";
    return is_unit ? uint64_t{1} << bits_per_step * (step + 1) : 0;
}

// Nothing for a number that is too large.
std::optional<uint64_t> value_of(std::string_view number)
{
    uint64_t value = 0;
    const auto result = std::from_chars(number.data(), number.data() + number.size(), value);
    return result.ec == std::errc() ? std::optional(value) : std::nullopt;
}

} // namespace

std::string whole_number(const std::string &text, uint64_t least, uint64_t most)
{
    const bool is_number = !text.empty() && text.find_first_not_of(digits) == std::string::npos;
    const std::optional<uint64_t> value = is_number ? value_of(text) : std::nullopt;
    if (!value || *value < least || *value > most) {
        refuse(text, "is not a whole number from " + std::to_string(least) + " to " +
                         std::to_string(most));
    }
    return std::to_string(*value);
}

std::string number_of_seconds(const std::string &text, double least, double most)
{
    double value = 0;
    const char *end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, value, std::chars_format::fixed);
    const bool is_number = result.ec == std::errc() && result.ptr == end &&
                           text.find_first_not_of(std::string(digits) + ".") == std::string::npos;
    if (!is_number || value < least || value > most) {
        refuse(text,
               "is not a number of seconds from " + in_words(least) + " to " + in_words(most));
    }
    return text;
}

std::string number_of_bytes(const std::string &text)
{
    const std::size_t number_end = std::min(text.find_first_not_of(digits), text.size());
    const std::size_t unit_start = std::min(text.find_first_not_of(' ', number_end), text.size());
    const uint64_t unit = bytes_of_unit(text.substr(unit_start));
    if (number_end == 0 || unit == 0) {
        refuse(text, "is not a size such as 500KB, 64MB or 2GB");
    }
    const std::optional<uint64_t> number = value_of(text.substr(0, number_end));
    if (!number || *number > UINT64_MAX / unit) {
        refuse(text, "is too large");
    }
    if (*number == 0) {
        refuse(text, "allows nothing");
    }
    return std::to_string(*number * unit);
}

} // namespace pfsdoc::cli
