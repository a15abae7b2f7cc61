#include "lib/explain/body_walker.h"

#include "formats/text.h"
#include "vs_pfs.h"

#include <utility>

namespace pfsdoc::explaining {

using namespace formats;

std::string_view line_end_words(LineEnd end)
{
    return end == LineEnd::hard ? "hard" : "soft";
}

void BodyWalker::on_event(const Event &event, uint32_t position)
{
    if (const auto *character = std::get_if<Character>(&event)) {
        read_reported(character->byte, position);
    } else if (const auto *special = std::get_if<SpecialCharacter>(&event)) {
        read_special(special->byte, position);
    } else if (const auto *change = std::get_if<AttributeChange>(&event)) {
        const AttributeSet bit = attribute_bit(change->code);
        attributes_ =
            static_cast<AttributeSet>(change->on != 0 ? attributes_ | bit : attributes_ & ~bit);
    } else if (std::get_if<PageBreak>(&event) != nullptr) {
        ++page_breaks_; // reported from within the words that ask for it
    } else if (const auto *line_break = std::get_if<Break>(&event)) {
        read_break(line_break->code, position);
    }
}

void BodyWalker::advance(uint32_t target)
{
    reported_ = false;
    while (position() < target) {
        if (std::exchange(reported_, false)) {
            builder_.dispute(); // no event reported it
        }
        step();
    }
}

// A character, or the space that a line end became.
void BodyWalker::read_reported(int32_t byte, uint32_t target)
{
    advance(target);
    if (!reported_) {
        on_line_end(LineEnd::soft, true);
    } else if (byte != last_character_) {
        builder_.dispute();
    }
    reported_ = false;
}

// A byte of a command, or a space of a line that holds nothing else, which has been claimed
// as indent.
void BodyWalker::read_special(int32_t byte, uint32_t target)
{
    if (in_command_) {
        finish_line_end();
        take_command_byte(target - position());
        in_command_ = byte != asterisk;
        return;
    }
    asterisk_opens_command_ = byte == asterisk;
    advance(target);
    in_command_ = std::exchange(asterisk_opens_command_, false);
}

void BodyWalker::read_break(int32_t code, uint32_t target)
{
    advance(target);
    if (code == VW_BREAK_PARAGRAPH) {
        on_line_end(LineEnd::hard, false);
    } else {
        finish_line_end();
    }
}

void BodyWalker::read_character(int32_t first)
{
    const Decoded decoded = decode(first);
    if (!decoded.complete) {
        builder_.claim(SpanKind::cut, builder_.size() - builder_.position(),
                       "a character cut off by the end of the file");
    } else if (decoded.character == space && spaces_are_indent()) {
        builder_.claim(SpanKind::indent, 1 + decoded.attribute_bytes, "leading spaces: indent");
        on_indent();
        on_column();
    } else if (decoded.character == asterisk && asterisk_opens_command_) {
        builder_.separate();
        command_words_ = take_page_break() ? "command: new page" : "command";
        on_character(asterisk);
        take_command_byte(1 + decoded.attribute_bytes);
    } else {
        take_text(decoded);
    }
}

void BodyWalker::take_text(const Decoded &decoded)
{
    last_character_ =
        decoded.character == no_glyph ? static_cast<uint8_t>(space) : decoded.character;
    builder_.claim_character(last_character_, decoded.attribute_bytes, attributes_);
    reported_ = true;
    on_character(decoded.character);
    on_column();
}

void BodyWalker::take_command_byte(uint32_t length)
{
    builder_.claim(SpanKind::command, length, command_words_);
    on_column();
}

void BodyWalker::read_document_end()
{
    builder_.claim(SpanKind::end_mark, 1, "end of the document");
}

void BodyWalker::hold_line_end(LineEnd by_rule, std::string reason, bool ends_in_space)
{
    held_ = {1, by_rule, std::move(reason), ends_in_space};
}

void BodyWalker::on_line_end(LineEnd actual, bool as_space)
{
    if (held_.length == 0) {
        builder_.dispute(); // an event where no line ends
        return;
    }
    claim_held(actual, as_space);
}

void BodyWalker::finish_line_end()
{
    if (held_.length != 0) {
        claim_held(LineEnd::soft, false);
    }
}

void BodyWalker::claim_held(LineEnd actual, bool as_space)
{
    const Held held = std::exchange(held_, Held{});
    std::string words = "line end, ";
    words.append(line_end_words(actual)).append(": ").append(held.reason);
    if (actual == LineEnd::soft) {
        words.append(as_space ? "; becomes a space" : "; the line ends in a space already");
    }
    Span &span = builder_.claim_alone(SpanKind::line_end, held.length, words);
    span.line_end = actual;
    span.characters.assign(as_space ? 1 : 0, ' ');
    span.disputed =
        actual != held.by_rule || (actual == LineEnd::soft && as_space == held.ends_in_space);
}

bool BodyWalker::take_page_break()
{
    const bool due = page_breaks_ > 0;
    page_breaks_ -= due ? 1 : 0;
    return due;
}

} // namespace pfsdoc::explaining
