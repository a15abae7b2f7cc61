#include "lib/explain/professional_write_walker.h"

#include "formats/write_family.h"
#include "lib/explain/margin_record.h"
#include "lib/explain/stored_characters.h"

#include <string>

namespace pfsdoc::explaining {

using namespace formats;

namespace {

constexpr int32_t last_type = write::line_double;

class ProfessionalWriteWalker final : public BodyWalker {
public:
    explicit ProfessionalWriteWalker(SpanBuilder &builder) : BodyWalker(builder) {}

private:
    enum class Hiding { off, possible, on };
    enum class LineStart { indent, after_record, over };

    void step() override;
    Decoded decode(int32_t byte) override;
    bool spaces_are_indent() const override
    {
        return line_start_ == LineStart::indent;
    }
    void on_character(uint8_t character) override
    {
        if (character != space) {
            line_start_ = LineStart::over;
        }
    }
    void on_line_end(LineEnd actual, bool as_space) override;

    void begin_line();
    void claim_type(int32_t byte);
    void set_type(int32_t byte);
    void read_within_line(int32_t byte);
    void read_record();
    void read_hidden(int32_t byte);
    std::string_view reason() const;

    bool in_line_ = false;
    bool ends_paragraph_ = false;
    bool has_type_ = false;
    Hiding hiding_ = Hiding::off;
    LineStart line_start_ = LineStart::indent;
    // Of the line before, until a type byte reports it.
    LineEnd ended_ = LineEnd::none;
    std::string ended_words_;
    bool ended_with_space_ = false;
    bool ended_disputed_ = false;
};

void ProfessionalWriteWalker::step()
{
    const int32_t byte = next_byte();
    if (!in_line_) {
        begin_line();
    } else if (byte <= last_type) {
        const bool may_hide = byte == write::line_suppress || byte == write::line_double;
        if (may_hide && hiding_ == Hiding::possible) {
            hiding_ = Hiding::on;
            builder_.claim_alone(SpanKind::line_type, 1, "hides the rest of the line");
        } else {
            in_line_ = false; // and no event reported how it ended
            builder_.dispute();
        }
    } else {
        read_within_line(byte);
    }
}

void ProfessionalWriteWalker::begin_line()
{
    const int32_t byte = next_byte();
    in_line_ = true;
    line_start_ = LineStart::indent;
    ends_paragraph_ = byte == write::line_single || byte == write::line_double;
    has_type_ = byte <= last_type;
    if (has_type_) {
        set_type(byte);
        claim_type(byte);
    }
}

void ProfessionalWriteWalker::set_type(int32_t byte)
{
    if (byte != write::line_suppress) {
        hiding_ = Hiding::off;
    } else {
        hiding_ = hiding_ == Hiding::possible ? Hiding::on : Hiding::possible;
    }
}

void ProfessionalWriteWalker::claim_type(int32_t byte)
{
    std::string words = "line type: ";
    switch (byte) {
    case write::line_continued: words += "goes on in the next line"; break;
    case write::line_single: words += "ends its paragraph, single spacing"; break;
    case write::line_double: words += "ends its paragraph, double spacing"; break;
    default: words += hiding_ == Hiding::on ? "hidden, goes on" : "goes on, may hide text"; break;
    }
    if (ended_ != LineEnd::none) {
        words.append("; the line before ends ").append(ended_words_);
    }
    Span &span = builder_.claim_alone(SpanKind::line_type, 1, words);
    span.line_end = ended_;
    span.characters.assign(ended_with_space_ ? 1 : 0, ' ');
    span.disputed = ended_disputed_;
    ended_ = LineEnd::none;
    ended_with_space_ = false;
    ended_disputed_ = false;
}

std::string_view ProfessionalWriteWalker::reason() const
{
    if (ends_paragraph_) {
        return "its type says so";
    }
    if (line_start_ != LineStart::over) {
        return "it has no text";
    }
    return has_type_ ? "its type says that it goes on" : "it has no type";
}

void ProfessionalWriteWalker::on_line_end(LineEnd actual, bool as_space)
{
    const LineEnd by_rule =
        ends_paragraph_ || line_start_ != LineStart::over ? LineEnd::hard : LineEnd::soft;
    ended_ = actual;
    ended_words_ = line_end_words(actual);
    ended_words_.append(": ").append(reason()).append(as_space ? ", and becomes a space" : "");
    ended_with_space_ = as_space;
    ended_disputed_ = !in_line_ || actual != by_rule || next_byte() > last_type;
    in_line_ = false;
}

void ProfessionalWriteWalker::read_within_line(int32_t byte)
{
    switch (byte) {
    case write::record_mark: read_record(); break;
    case form_feed:
        builder_.claim(SpanKind::unused, 1, "form feed within the text: skipped");
        break;
    case document_end: read_document_end(); break;
    default:
        if (hiding_ == Hiding::on) {
            read_hidden(byte);
        } else {
            read_character(byte);
        }
    }
}

void ProfessionalWriteWalker::read_record()
{
    claim_margin_record(builder_);
    if (line_start_ == LineStart::indent) {
        line_start_ = LineStart::after_record;
    }
}

void ProfessionalWriteWalker::read_hidden(int32_t byte)
{
    const Decoded decoded = decode(byte);
    if (decoded.complete) {
        builder_.claim(SpanKind::hidden_text, 1 + decoded.attribute_bytes, "hidden text");
    } else {
        read_character(byte);
    }
}

BodyWalker::Decoded ProfessionalWriteWalker::decode(int32_t byte)
{
    const StoredCharacter stored =
        stored_character(DocumentKind::professional_write_1, byte,
                         [this](uint32_t at) { return builder_.byte(position() + at); });
    return {stored.character, stored.attribute_bytes, stored.complete};
}

} // namespace

std::unique_ptr<BodyWalker> make_professional_write_walker(SpanBuilder &builder)
{
    return std::make_unique<ProfessionalWriteWalker>(builder);
}

} // namespace pfsdoc::explaining
