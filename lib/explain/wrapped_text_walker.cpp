#include "lib/explain/wrapped_text_walker.h"

#include "formats/text.h"
#include "lib/explain/next_word.h"
#include "lib/explain/stored_characters.h"

#include <string>

namespace pfsdoc::explaining {

using namespace formats;

namespace {

int16_t one_more(int16_t count)
{
    return static_cast<int16_t>(count + 1);
}

class WrappedTextWalker final : public BodyWalker {
public:
    WrappedTextWalker(SpanBuilder &builder, ByteSource &source, const BodyStart &start)
        : BodyWalker(builder), start_(start), next_word_(source, start.kind),
          return_is_due_(!is_choice()), column_(start.left_margin)
    {
    }

private:
    void step() override;
    Decoded decode(int32_t byte) override;
    bool spaces_are_indent() const override
    {
        return line_is_blank_;
    }
    void on_character(uint8_t character) override
    {
        ends_in_space_ = character == space;
        line_is_blank_ = false;
    }
    void on_indent() override
    {
        ends_in_space_ = true;
        leading_spaces_ = one_more(leading_spaces_);
    }
    void on_column() override
    {
        column_ = one_more(column_);
    }

    bool is_choice() const
    {
        return start_.kind == DocumentKind::first_choice_2;
    }
    bool is_line_end(int32_t byte) const
    {
        return byte == carriage_return || (is_choice() && byte == form_feed);
    }
    void read_line_end(int32_t byte);
    // Whether a line end here is hard, and why.
    bool ends_hard(std::string &reason);

    BodyStart start_;
    NextWord next_word_;
    bool return_is_due_; // the one before the first line
    int16_t column_;
    int16_t leading_spaces_ = 0;
    bool line_is_blank_ = true;
    bool ends_in_space_ = false;
};

void WrappedTextWalker::step()
{
    finish_line_end();
    const int32_t byte = next_byte();
    if (is_line_end(byte)) {
        read_line_end(byte);
    } else if (byte == document_end) {
        read_document_end();
    } else if (byte == form_feed) {
        builder_.claim(SpanKind::unused, 1, "form feed within the text: skipped");
    } else {
        read_character(byte);
    }
}

BodyWalker::Decoded WrappedTextWalker::decode(int32_t byte)
{
    const StoredCharacter stored = stored_character(
        start_.kind, byte, [this](uint32_t at) { return builder_.byte(position() + at); });
    return {stored.character, stored.attribute_bytes, stored.complete};
}

void WrappedTextWalker::read_line_end(int32_t byte)
{
    if (return_is_due_) {
        return_is_due_ = false;
        builder_.claim(SpanKind::unused, 1, "line end before the first line: skipped");
        return;
    }
    std::string reason;
    const bool hard = ends_hard(reason);
    if (is_choice()) {
        reason.append(byte == carriage_return ? "; double spacing" : "; single spacing");
    }
    hold_line_end(hard ? LineEnd::hard : LineEnd::soft, reason, ends_in_space_);
    column_ = start_.left_margin;
    leading_spaces_ = 0;
    line_is_blank_ = true;
    ends_in_space_ = false;
}

bool WrappedTextWalker::ends_hard(std::string &reason)
{
    int16_t leading_spaces = leading_spaces_;
    if (line_is_blank_ && !is_choice()) { // its spaces are characters after all
        column_ = leading_spaces;
        leading_spaces = 0;
    }
    if (column_ == leading_spaces) {
        reason = "the line is empty";
        return true;
    }
    const int16_t length = next_word_.length_at(position() + 1);
    if (length == 0) {
        reason = "no word follows in the next line";
        return true;
    }
    const int sum = column_ + length;
    const bool fits = sum <= start_.right_margin;
    reason = "the next word ";
    reason.append(fits ? "would have fitted: " : "would not have fitted: ");
    reason.append(std::to_string(column_)).append(" + ").append(std::to_string(length));
    reason.append(fits ? " is not beyond " : " is beyond ");
    reason.append(std::to_string(start_.right_margin));
    return fits;
}

} // namespace

std::unique_ptr<BodyWalker> make_wrapped_text_walker(SpanBuilder &builder, ByteSource &source,
                                                     const BodyStart &start)
{
    return std::make_unique<WrappedTextWalker>(builder, source, start);
}

} // namespace pfsdoc::explaining
