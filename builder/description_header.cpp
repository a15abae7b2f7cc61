// The header part of a description. Each key has one function, found by name in a table.
// Test: tests/builder/description_test.cpp.
#include "builder/build.h"
#include "builder/code_page_437.h"
#include "builder/description_parts.h"

#include <algorithm>

namespace pfs_builder {
namespace {

// The value of a key, without surrounding spaces.
struct Value {
    std::string text;
    Location location;
};

Result take_kind(const Value &value, Document &document)
{
    const auto kind = find_kind(value.text);
    if (!kind) {
        return Problem{"`" + value.text + "` is no kind of document",
                       "write one of 1012 to 1017 and 1058, or its name, as `PFS: WRITE B`"};
    }
    document.kind = *kind;
    document.kind_location = value.location;
    return std::nullopt;
}

Result take_signature(const Value &value, Document &document)
{
    if (value.text != "TYPE 2" && value.text != "WRD PC") {
        return Problem{"`" + value.text + "` is no signature", "write `TYPE 2` or `WRD PC`"};
    }
    document.signature = value.text == "TYPE 2" ? Signature::type_2 : Signature::wrd_pc;
    document.signature_location = value.location;
    return std::nullopt;
}

Result take_generation(const Value &value, Document &document)
{
    const auto bytes = parse_hexadecimal(value.text);
    if (value.text.size() == 1) {
        document.generation = value.text.front();
    } else if (bytes && bytes->size() == 1) {
        document.generation = bytes->front();
    } else {
        return Problem{"`" + value.text + "` is no generation",
                       "write one character, or a byte as two hexadecimal digits"};
    }
    document.generation_location = value.location;
    return std::nullopt;
}

Result take_margins(const Value &value, Document &document)
{
    const auto margins = parse_margins(value.text);
    if (!margins) {
        return Problem{"margins are two columns", "write them as `margins: 10 70`"};
    }
    document.margins = *margins;
    document.margins_location = value.location;
    return std::nullopt;
}

Result take_tabs(const Value &value, Document &document)
{
    for (std::string word : split_words(value.text)) {
        const bool decimal = word.back() == '.';
        if (decimal) {
            word.pop_back();
        }
        const auto column = parse_number(word);
        if (!column) {
            return Problem{"tab stops are columns, decimal ones with a dot",
                           "write them as `tabs: 15 20 30.`"};
        }
        document.tab_stops.push_back({*column, decimal});
    }
    document.tab_stops_location = value.location;
    return std::nullopt;
}

Result take_line(const Value &value, HeaderFooter &block, std::size_t line)
{
    const Converted converted = utf8_to_code_page_437(value.text);
    if (!converted.rejected.empty()) {
        return Problem{converted.rejected + " is not in code page 437",
                       "use a character of that code page"};
    }
    block.lines[line] = converted.bytes;
    block.line_locations[line] = value.location;
    return std::nullopt;
}

Result take_alignment(const Value &value, HeaderFooter &block)
{
    if (value.text == "left") {
        block.alignment = Alignment::left;
    } else if (value.text == "centre" || value.text == "center") {
        block.alignment = Alignment::centre;
    } else if (value.text == "right") {
        block.alignment = Alignment::right;
    } else {
        return Problem{"`" + value.text + "` is no alignment", "write left, centre or right"};
    }
    block.alignment_location = value.location;
    return std::nullopt;
}

Result take_style(const Value &value, HeaderFooter &block)
{
    block.style_location = value.location;
    for (const std::string &word : split_words(value.text)) {
        if (word == "bold") {
            block.style |= style_bold;
        } else if (word == "italic") {
            block.style |= style_italic;
        } else if (word == "underline") {
            block.style |= style_underline;
        } else {
            return Problem{"`" + word + "` is no style of a header or footer",
                           "write bold, italic or underline, or several of them"};
        }
    }
    return std::nullopt;
}

Result take_record(const Value &value, Document &document)
{
    const std::size_t end_of_word = std::min(value.text.find(' '), value.text.size());
    const std::string word = value.text.substr(0, end_of_word);
    const std::string rest = value.text.substr(end_of_word);
    const auto margins = parse_margins(rest);
    const auto bytes = parse_hexadecimal(rest);
    if (word == "margins" && margins) {
        document.records.emplace_back(MarginRecord{*margins, value.location});
    } else if (word == "raw" && bytes) {
        document.records.emplace_back(OtherRecord{*bytes, value.location});
    } else {
        return Problem{"this is no record",
                       "write `margins LEFT RIGHT`, or `raw` and bytes, the record's type first"};
    }
    return std::nullopt;
}

Result take_flag(const Value &value, const char *word, bool &flag)
{
    if (value.text != word) {
        return Problem{"`" + value.text + "` is nothing that can stand here",
                       std::string("write `") + word + "` or leave the line out"};
    }
    flag = true;
    return std::nullopt;
}

struct Key {
    std::string_view name;
    Result (*take)(const Value &, Document &);
    bool repeatable = false;
};

constexpr std::array<Key, 16> keys = {{
    {"kind", take_kind},
    {"signature", take_signature},
    {"generation", take_generation},
    {"margins", take_margins},
    {"tabs", take_tabs},
    {"header", [](const Value &value, Document &d) { return take_line(value, d.header, 0); }},
    {"header 2", [](const Value &value, Document &d) { return take_line(value, d.header, 1); }},
    {"footer", [](const Value &value, Document &d) { return take_line(value, d.footer, 0); }},
    {"footer 2", [](const Value &value, Document &d) { return take_line(value, d.footer, 1); }},
    {"header align",
     [](const Value &value, Document &d) { return take_alignment(value, d.header); }},
    {"footer align",
     [](const Value &value, Document &d) { return take_alignment(value, d.footer); }},
    {"header style", [](const Value &value, Document &d) { return take_style(value, d.header); }},
    {"footer style", [](const Value &value, Document &d) { return take_style(value, d.footer); }},
    {"record", take_record, true},
    {"spaces",
     [](const Value &value, Document &d) { return take_flag(value, "plain", d.plain_spaces); }},
    {"joins",
     [](const Value &value, Document &d) { return take_flag(value, "allowed", d.joins_allowed); }},
}};

} // namespace

Result parse_header_line(const SourceLine &line, Document &document)
{
    const std::size_t colon = line.text.find(':');
    if (colon == std::string::npos) {
        return Problem{"this line has no colon", "write `key: value`, or `---` before the body"};
    }
    const std::string name = line.text.substr(0, colon);
    const auto *const key = std::find_if(keys.begin(), keys.end(),
                                         [&](const Key &entry) { return entry.name == name; });
    if (key == keys.end()) {
        return Problem{"`" + name + "` is nothing that a header part can hold",
                       "docs/descriptions.md has the list"};
    }
    const auto known = std::find(document.keys_seen.begin(), document.keys_seen.end(), name);
    if (known != document.keys_seen.end() && !key->repeatable) {
        return Problem{"`" + name + "` stands here a second time", "keep one of the two"};
    }
    document.keys_seen.push_back(name);
    const std::string_view value =
        without_leading_whitespace(std::string_view(line.text).substr(colon + 1));
    return key->take({std::string(value), line.location}, document);
}

} // namespace pfs_builder
