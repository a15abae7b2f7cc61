// The text of a paragraph: characters, commands between asterisks, and marks in braces, which
// switch styles on and off or stand for something that cannot be typed.
// Test: tests/builder/description_text_test.cpp.
#include "builder/code_page_437.h"
#include "builder/commands.h"
#include "builder/description_parts.h"

#include <algorithm>

namespace pfs_builder {
namespace {

constexpr char tab = 0x09;
constexpr char first_printable = 0x20;
constexpr char last_printable = 0x7E;
constexpr char raw_prefix = 'x';

struct StyleMark {
    std::string_view name;
    Style style;
};
constexpr std::array<StyleMark, 5> style_marks = {{{"b", style_bold},
                                                   {"i", style_italic},
                                                   {"u", style_underline},
                                                   {"sub", style_subscript},
                                                   {"sup", style_superscript}}};
constexpr std::string_view hide_mark = "hide";

class TextParser {
public:
    explicit TextParser(const std::vector<SourceLine> &lines)
    {
        for (const SourceLine &line : lines) {
            if (!starts_.empty()) {
                joined_ += space;
            }
            starts_.push_back({joined_.size(), line.location});
            joined_ += line.text;
        }
    }

    ParsedText parse()
    {
        Result problem;
        while (!problem && position_ < joined_.size()) {
            problem = take_one();
        }
        if (!problem && (style_ != style_none || hidden_)) {
            problem = Problem{"a style or a suppressed stretch is open at the paragraph's end",
                              "close it, and open it again in the next paragraph"};
        }
        return {std::move(cells_), problem, location()};
    }

private:
    // Where each line begins in the joined text.
    struct LineStart {
        std::size_t offset;
        Location location;
    };

    std::string_view rest() const
    {
        return std::string_view(joined_).substr(position_);
    }

    Location location() const
    {
        const auto after = std::find_if(starts_.begin(), starts_.end(), [this](const LineStart &s) {
            return s.offset > position_;
        });
        return (after - 1)->location;
    }

    Result take_one()
    {
        switch (joined_[position_]) {
        case '{': return take_brace();
        case command_mark: return take_asterisk();
        default: return take_character();
        }
    }

    void add(CellKind kind, std::string bytes)
    {
        const Style style = kind == CellKind::text ? style_ : style_none;
        cells_.push_back({kind, style, hidden_, location(), std::move(bytes)});
    }

    Result take_character()
    {
        std::string_view text = rest();
        const Converted converted = take_code_page_437(text);
        if (!converted.rejected.empty()) {
            return Problem{converted.rejected + " is not in code page 437",
                           "use a character of that code page, or a byte as {x8D}"};
        }
        add(CellKind::text, converted.bytes);
        position_ = joined_.size() - text.size();
        return std::nullopt;
    }

    Result take_asterisk()
    {
        const Command command = find_command(rest());
        switch (command.state) {
        case CommandState::none: return take_character();
        case CommandState::whole: return take_command(command.length);
        case CommandState::unclosed: break;
        }
        return Problem{"a command begins at this asterisk and is never closed",
                       "close it with an asterisk, or part the asterisk from the word behind it"};
    }

    Result take_command(std::size_t length)
    {
        for (const char character : rest().substr(0, length)) {
            if (character < first_printable || character > last_printable) {
                return Problem{"a command holds a character that is not ASCII",
                               "use ASCII characters in commands"};
            }
            add(CellKind::command, {character});
        }
        position_ += length;
        return std::nullopt;
    }

    Result take_brace()
    {
        if (rest().substr(0, 2) == "{{") {
            add(CellKind::text, "{");
            position_ += 2;
            return std::nullopt;
        }
        const std::size_t end = rest().find('}');
        if (end == std::string_view::npos) {
            return Problem{"this brace is never closed", "close it, or write {{ for a brace"};
        }
        const std::string mark(rest().substr(1, end - 1));
        Result problem = take_mark(mark);
        position_ += end + 1;
        return problem;
    }

    Result take_mark(const std::string &mark)
    {
        if (mark == "tab") {
            add(CellKind::text, {tab});
            return std::nullopt;
        }
        if (!mark.empty() && mark.front() == raw_prefix) {
            return take_raw(mark.substr(1));
        }
        const bool closing = !mark.empty() && mark.front() == '/';
        return take_switch(closing ? mark.substr(1) : mark, !closing);
    }

    Result take_raw(const std::string &digits)
    {
        const auto bytes = parse_hexadecimal(digits);
        if (!bytes) {
            return Problem{"{x" + digits + "} holds no bytes",
                           "write two hexadecimal digits for each byte, as {x8D 00}"};
        }
        add(CellKind::raw, *bytes);
        return std::nullopt;
    }

    Result take_switch(const std::string &name, bool on)
    {
        if (name == hide_mark) {
            Result problem = check_switch(name, hidden_, on);
            hidden_ = on;
            return problem;
        }
        for (const StyleMark &mark : style_marks) {
            if (mark.name == name) {
                Result problem = check_switch(name, (style_ & mark.style) != 0, on);
                style_ ^= mark.style;
                return problem;
            }
        }
        return Problem{"{" + name + "} is no mark", "docs/descriptions.md has the list; write {{ "
                                                    "for a brace"};
    }

    static Result check_switch(const std::string &name, bool is_on, bool on)
    {
        if (is_on == on) {
            return on ? Problem{"{" + name + "} is open already", "close it first"}
                      : Problem{"{/" + name + "} closes what is not open", "leave it out"};
        }
        return std::nullopt;
    }

    std::string joined_;
    std::vector<LineStart> starts_;
    std::size_t position_ = 0;
    Style style_ = style_none;
    bool hidden_ = false;
    std::vector<Cell> cells_;
};

} // namespace

ParsedText parse_text(const std::vector<SourceLine> &lines)
{
    return TextParser(lines).parse();
}

} // namespace pfs_builder
