// Explaining a document's text: what all kinds have in common.
//
// A walker is given the module's events. Each comes with the position that the module has
// reached, so the bytes up to there are what led to it, and the walker claims them by the
// rules of its kind. What the rules leave open the event decides: whether an asterisk
// opened a command, whether a line end was soft or hard, whether it became a space.
//
// A line end may be silent, where the line ends in a space already. So its claim is kept back
// until the next byte shows that no event came. Tests: tests/lib/explain/.
#pragma once

#include "lib/explain/span_builder.h"
#include "pfsdoc/events.h"

#include <cstdint>
#include <string>

namespace pfsdoc::explaining {

// What was announced before the text. Columns are counted from 0.
struct BodyStart {
    DocumentKind kind;
    int16_t left_margin = 0;
    int16_t right_margin = 0;
};

class BodyWalker {
public:
    explicit BodyWalker(SpanBuilder &builder) : builder_(builder) {}
    virtual ~BodyWalker() = default;
    BodyWalker(const BodyWalker &) = delete;
    BodyWalker &operator=(const BodyWalker &) = delete;

    // The position is one within the file, or its size.
    void on_event(const Event &event, uint32_t position);

protected:
    // A character as it is stored.
    struct Decoded {
        uint8_t character = 0;
        uint32_t attribute_bytes = 0;
        bool complete = true;
    };

    // Reads what is next, or changes state so that the next call does.
    virtual void step() = 0;
    virtual Decoded decode(int32_t byte) = 0;
    // Whether a space that comes now counts as indent.
    virtual bool spaces_are_indent() const = 0;
    // A character of the line was claimed.
    virtual void on_character(uint8_t character) = 0;
    virtual void on_indent() {}
    // A character, a leading space or a byte of a command was claimed.
    virtual void on_column() {}
    // The line ended where the walker is; `as_space`: it was reported as one.
    virtual void on_line_end(LineEnd actual, bool as_space);

    // The next byte that has not been read.
    uint32_t position() const
    {
        return builder_.position() + held_.length;
    }
    int32_t next_byte()
    {
        return builder_.byte(position());
    }
    void read_character(int32_t first);
    void read_document_end();

    // A line end of one byte, whose claim waits for what the module makes of it.
    void hold_line_end(LineEnd by_rule, std::string reason, bool ends_in_space);
    // No event came for a line end that is kept back.
    void finish_line_end();
    // Whether a new-page command or line has been reported since the last call.
    bool take_page_break();

    SpanBuilder &builder_;

private:
    struct Held {
        uint32_t length = 0; // 0: none
        LineEnd by_rule = LineEnd::none;
        std::string reason;
        bool ends_in_space = false;
    };

    void advance(uint32_t position);
    void take_text(const Decoded &decoded);
    void take_command_byte(uint32_t length);
    void read_special(int32_t byte, uint32_t position);
    void read_reported(int32_t byte, uint32_t position);
    void read_break(int32_t code, uint32_t position);
    void claim_held(LineEnd actual, bool as_space);

    Held held_;
    AttributeSet attributes_ = 0;
    uint32_t page_breaks_ = 0;
    bool in_command_ = false;
    bool asterisk_opens_command_ = false;
    std::string_view command_words_;
    bool reported_ = false; // the last step took a character that an event must report
    uint8_t last_character_ = 0;
};

// What precedes the text in the words for a line end.
std::string_view line_end_words(LineEnd end);

} // namespace pfsdoc::explaining
