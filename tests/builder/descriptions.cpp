#include "tests/builder/descriptions.h"

#include "tests/support/notation.h"
#include "tests/support/recording_host.h"

#include <algorithm>
#include <fstream>
#include <iterator>

namespace builder_tests {
namespace {

using namespace pfs_builder;

constexpr uint8_t paragraph_end = '\n';

IncludeReader reader_of(const Includes &includes)
{
    return [&includes](const std::string &path) -> std::optional<Included> {
        const auto found = includes.find(path);
        if (found == includes.end()) {
            return std::nullopt;
        }
        return Included{path, found->second};
    };
}

std::string shown(const std::string &bytes)
{
    std::string text;
    for (const char byte : bytes) {
        const auto value = static_cast<uint8_t>(byte);
        constexpr const char *digits = "0123456789ABCDEF";
        if (value > 0x20 && value < 0x7F) {
            text += std::string("'") + byte + "' ";
        } else {
            text += std::string({digits[value >> 4], digits[value & 0x0F], ' '});
        }
    }
    return text;
}

// The style that goes with an attribute code of output routine 4.
Style style_of_code(int32_t code)
{
    switch (code) {
    case 2: return style_bold;
    case 3: return style_italic;
    case 4: return style_underline;
    case 10: return style_subscript;
    case 11: return style_superscript;
    default: ADD_FAILURE() << "attribute code " << code; return style_none;
    }
}

// Follows the calls of the body, that is those outside header and footer blocks.
class Listener {
public:
    void hear(const tests::Call &call)
    {
        switch (call.id) {
        case VW_SO_BREAK: hear_break(call.arguments[0]); break;
        case VW_SO_CHARACTER: hear_character(call.arguments[0]); break;
        case VW_SO_ATTRIBUTE: hear_attribute(call); break;
        default: break;
        }
    }

    std::vector<Heard> heard;

private:
    void hear_break(int32_t code)
    {
        if (code == VW_BREAK_BLOCK_OPEN || code == VW_BREAK_BLOCK_CLOSE) {
            within_block_ = code == VW_BREAK_BLOCK_OPEN;
        } else if (code == VW_BREAK_PARAGRAPH && !within_block_) {
            heard.push_back({paragraph_end, style_none});
        }
    }

    void hear_character(int32_t character)
    {
        if (!within_block_) {
            heard.push_back({static_cast<uint8_t>(character), style_});
        }
    }

    void hear_attribute(const tests::Call &call)
    {
        const Style style = style_of_code(call.arguments[0]);
        style_ = static_cast<Style>(call.arguments[1] != 0 ? style_ | style : style_ & ~style);
    }

    bool within_block_ = false;
    Style style_ = style_none;
};

std::string line_of(const std::vector<Heard> &all, std::size_t position)
{
    const std::size_t begin = position < 30 ? 0 : position - 30;
    std::string text;
    for (std::size_t i = begin; i < std::min(all.size(), position + 30); ++i) {
        text += i == position ? "[" : "";
        text += static_cast<char>(all[i].character);
        text += i == position ? "/" + std::to_string(all[i].style) + "]" : "";
    }
    return text;
}

} // namespace

std::string read_file(const std::string &path)
{
    std::ifstream stream(path, std::ios::binary);
    EXPECT_TRUE(stream) << path;
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

Document parsed(const std::string &description, const Includes &includes)
{
    Parsed result = parse_description(description, "letter", reader_of(includes));
    EXPECT_FALSE(result.fault) << to_string(*result.fault);
    return std::move(result.document);
}

std::string file_of(const std::string &description)
{
    const Built built = build(parsed(description));
    EXPECT_FALSE(built.fault) << to_string(*built.fault);
    return {built.bytes.begin(), built.bytes.end()};
}

std::string body_of(Kind kind, const std::string &file)
{
    constexpr std::size_t write_body = 1024 + 1; // the header and the form feed
    constexpr std::size_t choice_body = 512;
    const std::size_t start = is_write_family(kind) ? write_body : choice_body;
    EXPECT_GE(file.size(), start);
    return file.substr(std::min(start, file.size()));
}

std::string body_of(const std::string &description)
{
    return body_of(parsed(description).kind, file_of(description));
}

std::string fault_of(const std::string &description, const Includes &includes)
{
    const Parsed result = parse_description(description, "letter", reader_of(includes));
    if (result.fault) {
        return to_string(*result.fault);
    }
    const Built built = build(result.document);
    return built.fault ? to_string(*built.fault) : "";
}

testing::AssertionResult holds(const std::string &actual, std::string_view notation)
{
    if (actual == tests::bytes(notation)) {
        return testing::AssertionSuccess();
    }
    return testing::AssertionFailure()
           << "is    " << shown(actual) << "\nnot   " << shown(tests::bytes(notation));
}

std::string at(const std::string &file, std::size_t offset, std::size_t count)
{
    EXPECT_LE(offset + count, file.size());
    return offset <= file.size() ? file.substr(offset, count) : "";
}

bool is_write_family(Kind kind)
{
    return kind != Kind::first_choice_2 && kind != Kind::first_choice_3;
}

std::vector<Heard> said_by(const Document &document)
{
    std::vector<Heard> said;
    for (const Element &element : document.body) {
        const auto *paragraph = std::get_if<Paragraph>(&element);
        if (paragraph == nullptr) {
            continue;
        }
        for (const Cell &cell : paragraph->cells) {
            if (cell.kind == CellKind::text && !cell.hidden) {
                said.push_back({static_cast<uint8_t>(cell.bytes.front()), cell.style});
            }
        }
        said.push_back({paragraph_end, style_none});
    }
    return said;
}

std::vector<Heard> heard_from(const std::string &file)
{
    tests::RecordingHost host(file);
    EXPECT_EQ(host.open(), 0);
    host.section();
    host.stop_at_none();
    Listener listener;
    for (const tests::Call &call : host.read_all()) {
        listener.hear(call);
    }
    return listener.heard;
}

testing::AssertionResult same(const std::vector<Heard> &heard, const std::vector<Heard> &said)
{
    const std::size_t shorter = std::min(heard.size(), said.size());
    for (std::size_t i = 0; i < shorter; ++i) {
        const bool space = said[i].character == ' ';
        if (heard[i].character != said[i].character ||
            (!space && heard[i].style != said[i].style)) {
            return testing::AssertionFailure() << "heard " << line_of(heard, i) << "\nsaid  "
                                               << line_of(said, i) << "\nat " << i;
        }
    }
    if (heard.size() != said.size()) {
        return testing::AssertionFailure()
               << "heard " << heard.size() << " characters, said " << said.size();
    }
    return testing::AssertionSuccess();
}

} // namespace builder_tests
