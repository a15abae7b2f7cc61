#include "lib/explain/choice3_walker.h"

#include "formats/first_choice.h"
#include "lib/explain/stored_characters.h"

#include <string>

namespace pfsdoc::explaining {

using namespace formats;

namespace {

constexpr int most_tab_stops = 100; // the last of them ends the ruler, one byte later

bool is_special_line(int32_t header)
{
    return (header & (choice::line_text | choice::line_special)) == choice::line_special;
}

class Choice3Walker final : public BodyWalker {
public:
    explicit Choice3Walker(SpanBuilder &builder) : BodyWalker(builder) {}

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

    void begin_line(int32_t header);
    void begin_text_line(int32_t header);
    // Claims nothing; the last byte of the chain and its length.
    int32_t read_chain(int32_t header, uint32_t &length);
    void read_page_break(int32_t header);
    void read_ruler();
    void read_ruler_column(int32_t byte, uint8_t column);
    void read_line_end();

    bool in_text_ = false;
    bool ends_paragraph_ = false;
    bool line_is_blank_ = true;
    bool ends_in_space_ = false;
};

void Choice3Walker::step()
{
    finish_line_end();
    const int32_t byte = next_byte();
    if (byte == document_end) {
        read_document_end();
    } else if (!in_text_) {
        begin_line(byte);
    } else if (byte == carriage_return) {
        read_line_end();
    } else {
        read_character(byte);
    }
}

void Choice3Walker::begin_line(int32_t header)
{
    if (!is_special_line(header)) {
        begin_text_line(header);
    } else if ((header & choice::line_ruler) != 0) {
        read_ruler();
    } else {
        read_page_break(header);
    }
}

int32_t Choice3Walker::read_chain(int32_t header, uint32_t &length)
{
    int32_t last = header;
    length = 1;
    while (last >= 0 && (last & choice::line_more) != 0) {
        last = builder_.byte(position() + length);
        length += last >= 0 ? 1 : 0;
    }
    return last;
}

void Choice3Walker::begin_text_line(int32_t header)
{
    uint32_t length = 0;
    const int32_t last = read_chain(header, length);
    if (last < 0) {
        builder_.claim(SpanKind::cut, length, "a line's header cut off by the end of the file");
        return;
    }
    ends_paragraph_ = static_cast<uint16_t>(length) == choice::hard_end_chain_length &&
                      (last & choice::line_hard_end) != 0;
    builder_.separate();
    builder_.claim(SpanKind::line_type, length,
                   ends_paragraph_ ? "line header: text that ends its paragraph"
                                   : "line header: text that goes on in the next line");
    in_text_ = true;
    line_is_blank_ = true;
    ends_in_space_ = false;
}

// The rest of the line is passed over with it.
void Choice3Walker::read_page_break(int32_t header)
{
    uint32_t length = 0;
    const int32_t last = read_chain(header, length);
    if (last >= 0) {
        take_page_break();
    }
    builder_.separate();
    builder_.claim(SpanKind::page_break, length, "line header: page break");
    int32_t byte = next_byte();
    while (byte >= 0 && byte != carriage_return) {
        builder_.claim(SpanKind::unused, 1, "rest of the page break's line: skipped");
        byte = next_byte();
    }
    builder_.claim(SpanKind::page_break, 1, "end of the page break's line");
}

void Choice3Walker::read_ruler()
{
    builder_.claim_alone(SpanKind::line_type, 1, "line header: ruler");
    builder_.claim(SpanKind::unused, choice::ruler_unused_bytes, "first bytes of a ruler: skipped");
    uint8_t column = 0;
    int stops = 0;
    int32_t byte = next_byte();
    while (byte >= 0 && byte != carriage_return && stops < most_tab_stops) {
        read_ruler_column(byte, column);
        column = static_cast<uint8_t>(column + 1);
        stops += byte == choice::mark_tab_stop ? 1 : 0;
        byte = next_byte();
    }
    builder_.claim(SpanKind::record, 1,
                   byte == carriage_return ? "end of the ruler"
                                           : "a ruler ends at a hundred tab stops: skipped");
}

void Choice3Walker::read_ruler_column(int32_t byte, uint8_t column)
{
    const std::string at = " at column " + std::to_string(column);
    switch (byte) {
    case choice::mark_tab_stop:
        builder_.claim_alone(SpanKind::record, 1, "ruler: tab stop" + at);
        break;
    case choice::mark_left_margin:
        builder_.claim_alone(SpanKind::record, 1, "ruler: left margin" + at);
        break;
    case choice::mark_right_margin:
        builder_.claim_alone(SpanKind::record, 1, "ruler: right margin" + at);
        break;
    default:
        builder_.claim(SpanKind::record,
                       byte == choice::prefix_low || byte == choice::prefix_high ? 2 : 1,
                       "ruler: no mark");
    }
}

// Leading spaces do not save a line that goes on from becoming a space.
void Choice3Walker::read_line_end()
{
    in_text_ = false;
    hold_line_end(ends_paragraph_ ? LineEnd::hard : LineEnd::soft,
                  ends_paragraph_ ? "the line's header says so"
                                  : "the line's header says that it goes on",
                  ends_in_space_);
}

BodyWalker::Decoded Choice3Walker::decode(int32_t byte)
{
    const StoredCharacter stored =
        stored_character(DocumentKind::first_choice_3, byte,
                         [this](uint32_t at) { return builder_.byte(position() + at); });
    return {stored.character, stored.attribute_bytes, stored.complete};
}

} // namespace

std::unique_ptr<BodyWalker> make_choice3_walker(SpanBuilder &builder)
{
    return std::make_unique<Choice3Walker>(builder);
}

} // namespace pfsdoc::explaining
