// A description has a header part of "key: value" lines, a line "---", and a body. This file
// splits it into lines and passes them on.
// Test: tests/builder/description_test.cpp.
#include "builder/description_parts.h"

#include <cctype>

namespace pfs_builder {
namespace {

constexpr std::string_view whitespace = " \t\r";
constexpr std::string_view body_begins = "---";
constexpr char comment_mark = '#';

std::string_view without_trailing_whitespace(std::string_view text)
{
    const std::size_t last = text.find_last_not_of(whitespace);
    return text.substr(0, last == std::string_view::npos ? 0 : last + 1);
}

int hexadecimal_digit(char digit)
{
    if (digit >= '0' && digit <= '9') {
        return digit - '0';
    }
    const int letter = std::toupper(static_cast<unsigned char>(digit));
    return letter >= 'A' && letter <= 'F' ? letter - 'A' + 10 : -1;
}

// Parses the header part. Afterwards `next` is the index of the first line of the body.
std::optional<Fault> parse_header_part(const std::vector<SourceLine> &lines, Document &document,
                                       std::size_t &next)
{
    for (next = 0; next < lines.size(); ++next) {
        const SourceLine &line = lines[next];
        if (line.text == body_begins) {
            ++next;
            return std::nullopt;
        }
        if (line.text.empty() || line.text.front() == comment_mark) {
            continue;
        }
        if (const Result problem = parse_header_line(line, document)) {
            return fault_at(document, line.location, problem->what, problem->remedy);
        }
    }
    return fault_at(document, {0, static_cast<int>(lines.size())}, "the body is missing",
                    "put a line `---` between the header part and the body");
}

} // namespace

std::vector<SourceLine> split_lines(std::string_view text, std::size_t source)
{
    std::vector<SourceLine> lines;
    for (int number = 1; !text.empty(); ++number) {
        const std::size_t end = text.find('\n');
        const std::string_view line = text.substr(0, end);
        lines.push_back({{source, number}, std::string(without_trailing_whitespace(line))});
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    }
    return lines;
}

std::vector<std::string> split_words(std::string_view text)
{
    std::vector<std::string> words;
    for (text = without_leading_whitespace(text); !text.empty();
         text = without_leading_whitespace(text)) {
        const std::size_t length = std::min(text.find_first_of(whitespace), text.size());
        words.emplace_back(text.substr(0, length));
        text.remove_prefix(length);
    }
    return words;
}

std::string_view without_leading_whitespace(std::string_view text)
{
    text.remove_prefix(std::min(text.find_first_not_of(whitespace), text.size()));
    return text;
}

std::optional<int> parse_number(std::string_view word)
{
    constexpr int most = 32767;
    int number = 0;
    for (const char digit : word) {
        if (digit < '0' || digit > '9') {
            return std::nullopt;
        }
        number = number * 10 + (digit - '0');
        if (number > most) {
            return std::nullopt;
        }
    }
    return word.empty() ? std::nullopt : std::optional<int>(number);
}

std::optional<Margins> parse_margins(std::string_view text)
{
    const std::vector<std::string> words = split_words(text);
    if (words.size() != 2) {
        return std::nullopt;
    }
    const auto left = parse_number(words[0]);
    const auto right = parse_number(words[1]);
    if (!left || !right) {
        return std::nullopt;
    }
    return Margins{*left, *right};
}

std::optional<std::string> parse_hexadecimal(std::string_view text)
{
    std::string bytes;
    for (const std::string &word : split_words(text)) {
        const int high = word.size() == 2 ? hexadecimal_digit(word[0]) : -1;
        const int low = word.size() == 2 ? hexadecimal_digit(word[1]) : -1;
        if (high < 0 || low < 0) {
            return std::nullopt;
        }
        bytes.push_back(static_cast<char>(high * 16 + low));
    }
    return bytes.empty() ? std::nullopt : std::optional<std::string>(bytes);
}

Parsed parse_description(const std::string &text, const std::string &file_name,
                         const IncludeReader &include)
{
    Parsed parsed;
    parsed.document.sources = {file_name};
    const std::vector<SourceLine> lines = split_lines(text, 0);
    std::size_t next = 0;
    parsed.fault = parse_header_part(lines, parsed.document, next);
    if (!parsed.fault && parsed.document.kind_location.line == 0) {
        parsed.fault = fault_at(parsed.document, {0, 1}, "the kind of document is missing",
                                "write a line such as `kind: PFS: WRITE B`");
    }
    if (!parsed.fault) {
        const auto body = lines.begin() + static_cast<std::ptrdiff_t>(next);
        parsed.fault = BodyParser(parsed.document, include).parse({body, lines.end()});
    }
    return parsed;
}

} // namespace pfs_builder
