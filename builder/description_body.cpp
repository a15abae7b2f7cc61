// The body of a description. Lines are collected into a paragraph until something ends it: an
// empty line, a line that ends in a backslash, a directive, or the end. The spaces before its
// first line are its first-line indent, those before the others its left indent.
// Test: tests/builder/description_test.cpp.
#include "builder/code_page_437.h"
#include "builder/description_parts.h"

#include <algorithm>

namespace pfs_builder {
namespace {

constexpr char directive_mark = '@';
constexpr char hard_end_mark = '\\';
constexpr std::string_view include_directive = "include";

struct Argument {
    std::string text; // with all its spaces but those at the end
    Location location;
};

Result take_single(const Argument &argument, Document &document)
{
    document.body.emplace_back(Spacing{false, argument.location});
    return std::nullopt;
}

Result take_double(const Argument &argument, Document &document)
{
    document.body.emplace_back(Spacing{true, argument.location});
    return std::nullopt;
}

Result take_margins(const Argument &argument, Document &document)
{
    const auto margins = parse_margins(argument.text);
    if (!margins) {
        return Problem{"margins are two columns", "write them as `@margins 12 60`"};
    }
    document.body.emplace_back(MarginRecord{*margins, argument.location});
    return std::nullopt;
}

Result take_font_record(const Argument &argument, Document &document)
{
    const auto bytes = parse_hexadecimal(argument.text);
    if (!bytes) {
        return Problem{"a record is a row of bytes, its type first",
                       "write two hexadecimal digits for each, as `@font-record 02 18`"};
    }
    document.body.emplace_back(OtherRecord{*bytes, argument.location});
    return std::nullopt;
}

Result take_raw(const Argument &argument, Document &document)
{
    const auto bytes = parse_hexadecimal(argument.text);
    if (!bytes) {
        return Problem{"`@raw` is followed by bytes",
                       "write two hexadecimal digits for each, as `@raw 0A 0B`"};
    }
    document.body.emplace_back(RawBytes{*bytes, argument.location});
    return std::nullopt;
}

Result take_spaces(const Argument &argument, Document &document)
{
    constexpr int most = 255;
    const auto count = parse_number(without_leading_whitespace(argument.text));
    if (!count || *count > most) {
        return Problem{"`@spaces` is followed by their number", "write it as `@spaces 3`"};
    }
    document.body.emplace_back(Paragraph{{}, *count, 0, argument.location});
    return std::nullopt;
}

// Text that a directive uses unchanged.
Result convert(const Argument &argument, std::string &bytes)
{
    const Converted converted = utf8_to_code_page_437(argument.text);
    if (!converted.rejected.empty()) {
        return Problem{converted.rejected + " is not in code page 437",
                       "use a character of that code page"};
    }
    bytes = converted.bytes;
    return std::nullopt;
}

Result take_ruler(const Argument &argument, Document &document)
{
    RulerLine ruler{"", argument.location};
    Result problem = convert(argument, ruler.columns);
    document.body.emplace_back(std::move(ruler));
    return problem;
}

Result take_page_break(const Argument &argument, Document &document)
{
    PageBreakLine line{"", argument.location};
    Result problem = convert(argument, line.text);
    document.body.emplace_back(std::move(line));
    return problem;
}

struct Directive {
    std::string_view name;
    Result (*take)(const Argument &, Document &);
    bool has_argument = true;
};

constexpr std::array<Directive, 8> directives = {{
    {"single", take_single, false},
    {"double", take_double, false},
    {"margins", take_margins},
    {"font-record", take_font_record},
    {"raw", take_raw},
    {"spaces", take_spaces},
    {"ruler", take_ruler},
    {"page-break", take_page_break},
}};

int leading_spaces(const std::string &text)
{
    return static_cast<int>(std::min(text.find_first_not_of(space), text.size()));
}

// The lines' common indent from the second on, or none if they differ: then `odd` is the
// first that does.
std::optional<int> common_indent(const std::vector<SourceLine> &lines, Location &odd)
{
    const int indent = lines.size() > 1 ? leading_spaces(lines[1].text) : 0;
    for (std::size_t i = 1; i < lines.size(); ++i) {
        if (leading_spaces(lines[i].text) != indent) {
            odd = lines[i].location;
            return std::nullopt;
        }
    }
    return indent;
}

} // namespace

std::optional<Fault> BodyParser::parse(const std::vector<SourceLine> &lines)
{
    for (const SourceLine &line : lines) {
        if (auto fault = take(line)) {
            return fault;
        }
    }
    return end_paragraph();
}

std::optional<Fault> BodyParser::take(const SourceLine &line)
{
    if (line.text.empty()) {
        auto fault = end_paragraph();
        document_.body.emplace_back(Paragraph{{}, 0, 0, line.location});
        return fault;
    }
    const bool doubled = line.text.size() > 1 && line.text[1] == directive_mark;
    if (line.text.front() == directive_mark && !doubled) {
        auto fault = end_paragraph();
        return fault ? fault : take_directive(line);
    }
    SourceLine text = line;
    text.text.erase(0, line.text.front() == directive_mark ? 1 : 0);
    const bool hard_end = text.text.back() == hard_end_mark;
    if (hard_end) {
        text.text.pop_back();
    }
    paragraph_.push_back(std::move(text));
    return hard_end ? end_paragraph() : std::nullopt;
}

std::optional<Fault> BodyParser::take_directive(const SourceLine &line)
{
    const std::size_t end_of_name = std::min(line.text.find(space), line.text.size());
    const std::string name = line.text.substr(1, end_of_name - 1);
    const bool has_argument = end_of_name + 1 < line.text.size();
    const Argument argument{has_argument ? line.text.substr(end_of_name + 1) : "", line.location};
    if (name == include_directive) {
        return take_include(line, argument.text);
    }
    const auto *const directive =
        std::find_if(directives.begin(), directives.end(),
                     [&](const Directive &entry) { return entry.name == name; });
    if (directive == directives.end() || (has_argument && !directive->has_argument)) {
        return fault_at(document_, line.location, "`" + line.text + "` is no directive",
                        "docs/descriptions.md has the list; a text that begins with an at sign "
                        "is written with two");
    }
    if (const Result problem = directive->take(argument, document_)) {
        return fault_at(document_, line.location, problem->what, problem->remedy);
    }
    return std::nullopt;
}

std::optional<Fault> BodyParser::take_include(const SourceLine &line, const std::string &path)
{
    if (within_include_) {
        return fault_at(document_, line.location, "an included file includes another",
                        "include it from the description");
    }
    auto included = include_(path);
    if (!included) {
        return fault_at(document_, line.location, "`" + path + "` cannot be read",
                        "paths are taken from the description's directory");
    }
    document_.sources.push_back(std::move(included->name));
    within_include_ = true;
    auto fault = parse(split_lines(included->text, document_.sources.size() - 1));
    within_include_ = false;
    return fault;
}

std::optional<Fault> BodyParser::end_paragraph()
{
    if (paragraph_.empty()) {
        return std::nullopt;
    }
    std::vector<SourceLine> lines;
    lines.swap(paragraph_);
    Location odd;
    const auto left_indent = common_indent(lines, odd);
    if (!left_indent) {
        return fault_at(document_, odd, "this line is indented otherwise than the one before",
                        "indent all lines of a paragraph but its first alike");
    }
    Paragraph paragraph{{}, leading_spaces(lines[0].text), *left_indent, lines[0].location};
    for (SourceLine &line : lines) {
        line.text.erase(0, static_cast<std::size_t>(leading_spaces(line.text)));
    }
    ParsedText parsed = parse_text(lines);
    if (parsed.problem) {
        return fault_at(document_, parsed.location, parsed.problem->what, parsed.problem->remedy);
    }
    paragraph.cells = std::move(parsed.cells);
    document_.body.emplace_back(std::move(paragraph));
    return std::nullopt;
}

} // namespace pfs_builder
