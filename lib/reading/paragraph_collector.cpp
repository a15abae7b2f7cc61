#include "lib/reading/paragraph_collector.h"

#include "vs_pfs.h"

#include <utility>
#include <variant>

namespace pfsdoc::reading {

namespace {

constexpr char command_delimiter = '*';

constexpr int32_t header_block = 1;
constexpr int32_t footer_block = 2;

// -1 stands for a byte that a header text should have and has not: no character.
constexpr bool is_byte(int32_t value)
{
    return value >= 0 && value <= 0xFF;
}

// The bytes that end a line, by kind. In Professional Write the next line's type byte does.
std::string_view line_end_bytes(DocumentKind kind)
{
    constexpr std::string_view type_bytes("\x00\x01\x02\x03", 4);
    switch (kind) {
    case DocumentKind::professional_write_1:
    case DocumentKind::professional_write_2: return type_bytes;
    case DocumentKind::first_choice_2:
    case DocumentKind::first_choice_3: return "\x0C\x0D";
    default: return "\x0D";
    }
}

} // namespace

ParagraphTooLarge::ParagraphTooLarge(std::optional<uint64_t> offset)
    : ReadingStopped({ErrorKind::limit, "has a paragraph that is too large to hold in memory",
                      "read it with pfsdoc trace", offset})
{
}

LineSpacingRule line_spacing_rule(DocumentKind kind)
{
    return kind == DocumentKind::first_choice_2 ? LineSpacingRule::at_break
                                                : LineSpacingRule::at_last_character;
}

ParagraphCollector::ParagraphCollector(BlockSink &sink, LineSpacingRule rule)
    : sink_(sink), rule_(rule), alignment_(VW_ALIGN_LEFT), line_spacing_(VW_SINGLE_SPACING)
{
}

void ParagraphCollector::find_lines(ByteSource &source, DocumentKind kind)
{
    window_.emplace(source);
    line_ends_ = line_end_bytes(kind);
}

int32_t ParagraphCollector::on_event(const Event &event, uint32_t offset)
{
    if (!text_ended_) {
        note_offset(offset);
        std::visit([this](const auto &typed) { on(typed); }, event);
    }
    return 0;
}

void ParagraphCollector::on_characters(std::string_view bytes)
{
    if (!text_ended_) {
        note_offset(0);
        in_command_ = false;
        add_text(bytes);
    }
}

CollectorContext ParagraphCollector::context(uint32_t offset) const
{
    const uint32_t before = offset_ != offset ? offset_ : offset_before_;
    return {attributes_, alignment_, line_spacing_, margins_, tab_stops_, block_, before};
}

void ParagraphCollector::resume(const CollectorContext &context, uint32_t offset)
{
    attributes_ = context.attributes;
    alignment_ = context.alignment;
    line_spacing_ = context.line_spacing;
    margins_ = context.margins;
    tab_stops_ = context.tab_stops;
    block_ = context.block;
    note_offset(offset);
    offset_before_ = context.offset_before;
}

void ParagraphCollector::finish()
{
    end_text();
    if (!finished_) {
        finished_ = true;
        sink_.end_of_document();
    }
}

void ParagraphCollector::end_text()
{
    if (!text_ended_) {
        end_paragraph_in_progress();
        end_block();
        text_ended_ = true;
    }
}

// ------------------------------------------------------------------------ text --------

void ParagraphCollector::on(const Character &event)
{
    in_command_ = false;
    if (is_byte(event.byte)) {
        const char byte = static_cast<char>(event.byte);
        note_character();
        add_text({&byte, 1});
    }
}

// What follows a character in the file directly ends its line, or does not. Trailing spaces
// are characters, so nothing that is not reported comes in between.
void ParagraphCollector::note_character()
{
    const bool is_next_line =
        window_ && last_character_ < offset_ && !paragraph_.bytes.empty() &&
        line_ends_.find(static_cast<char>(window_->at(last_character_))) != std::string_view::npos;
    if (is_next_line) {
        if (paragraph_.line_starts.size() == max_paragraph_lines) {
            stop_at_limit();
        }
        paragraph_.line_starts.push_back(paragraph_.bytes.size());
    }
    last_character_ = offset_;
}

void ParagraphCollector::add_text(std::string_view bytes)
{
    if (bytes.size() > max_paragraph_bytes - paragraph_.bytes.size()) {
        stop_at_limit();
    }
    const bool same_piece = !paragraph_.pieces.empty() &&
                            paragraph_.pieces.back().kind == PieceKind::text &&
                            paragraph_.pieces.back().attributes == attributes_;
    if (!same_piece) {
        add_piece(PieceKind::text);
    }
    paragraph_.bytes.append(bytes);
    paragraph_.line_spacing = line_spacing_;
    paragraph_has_text_ = true;
    text_end_ = offset_;
}

void ParagraphCollector::on(const SpecialCharacter &event)
{
    if (!is_byte(event.byte)) {
        return;
    }
    note_character();
    const char byte = static_cast<char>(event.byte);
    if (!in_command_) {
        if (byte != command_delimiter) {
            return; // a space of a line of spaces
        }
        add_piece(PieceKind::command);
        in_command_ = true;
        command_bytes_ = 0;
    } else if (byte == command_delimiter) {
        in_command_ = false;
    }
    if (command_bytes_ < max_command_bytes) {
        ++command_bytes_;
        paragraph_.bytes.push_back(byte);
    } else {
        ++paragraph_.omitted_command_bytes;
        paragraph_.pieces.back().cut = true;
    }
}

void ParagraphCollector::on(const PageBreak &)
{
    in_command_ = false;
    if (paragraph_in_progress_) {
        add_piece(PieceKind::page_break);
    } else {
        sink_.page_break(piece_source());
    }
}

void ParagraphCollector::add_piece(PieceKind kind)
{
    if (paragraph_.pieces.size() == max_paragraph_pieces ||
        paragraph_.bytes.size() >= max_paragraph_bytes) {
        stop_at_limit();
    }
    begin_paragraph();
    paragraph_.pieces.push_back(
        {paragraph_.bytes.size(), piece_source(), attributes_, kind, false});
}

void ParagraphCollector::stop_at_limit() const
{
    throw ParagraphTooLarge(offset_ != 0 ? std::optional<uint64_t>(offset_) : std::nullopt);
}

// ------------------------------------------------------- what is reported of text -----

void ParagraphCollector::on(const AttributeChange &event)
{
    const AttributeSet bit = attribute_bit(event.code);
    attributes_ = static_cast<AttributeSet>(event.on != 0 ? attributes_ | bit : attributes_ & ~bit);
}

void ParagraphCollector::on(const Font &) {}

void ParagraphCollector::on(const Alignment &event)
{
    alignment_ = event.value;
}

void ParagraphCollector::on(const Indents &event)
{
    indents_ = event;
}

void ParagraphCollector::on(const TabStopsBegin &)
{
    coming_tab_stops_.clear();
}

void ParagraphCollector::on(const TabStop &event)
{
    if (coming_tab_stops_.size() < max_tab_stops) {
        coming_tab_stops_.push_back(event);
    }
}

void ParagraphCollector::on(const TabStopsEnd &)
{
    tab_stops_ = coming_tab_stops_;
}

void ParagraphCollector::on(const Margins &event)
{
    margins_ = event;
}

void ParagraphCollector::on(const SectionStart &) {}

void ParagraphCollector::on(const LineSpacing &event)
{
    line_spacing_ = event.twips;
}

// ---------------------------------------------------------------- ends and blocks -----

void ParagraphCollector::on(const Break &event)
{
    in_command_ = false;
    switch (event.code) {
    case VW_BREAK_PARAGRAPH: end_paragraph(); break;
    case VW_BREAK_END_OF_DOCUMENT: end_text(); break;
    case VW_BREAK_BLOCK_OPEN:
    case VW_BREAK_BLOCK_CLOSE:
        end_paragraph_in_progress();
        end_block();
        next_source_begin_ = offset_;
        break;
    default: break;
    }
}

void ParagraphCollector::on(const HeaderFooter &event)
{
    end_paragraph_in_progress();
    end_block();
    if (event.kind == header_block || event.kind == footer_block) {
        block_ = event.kind == header_block ? BlockKind::header : BlockKind::footer;
        sink_.block_begin(*block_);
    }
}

void ParagraphCollector::end_block()
{
    if (block_) {
        block_.reset();
        sink_.block_end();
    }
}

void ParagraphCollector::begin_paragraph()
{
    if (!paragraph_in_progress_) {
        paragraph_in_progress_ = true;
        if (!paragraph_.tab_stops.is_shared_with(tab_stops_)) {
            paragraph_.tab_stops = tab_stops_;
        }
    }
}

void ParagraphCollector::end_paragraph_in_progress()
{
    if (paragraph_in_progress_) {
        end_paragraph();
    }
}

void ParagraphCollector::end_paragraph()
{
    begin_paragraph(); // an empty one has not begun yet
    paragraph_.left_indent = indents_.left;
    paragraph_.first_line_indent = indents_.first_line;
    paragraph_.alignment = alignment_;
    paragraph_.margins = margins_;
    if (!paragraph_has_text_ || rule_ == LineSpacingRule::at_break) {
        paragraph_.line_spacing = line_spacing_;
    }
    set_source_range();
    sink_.paragraph(paragraph_);
    clear_paragraph();
}

// Keeps the memory for the next one.
void ParagraphCollector::clear_paragraph()
{
    paragraph_.bytes.clear();
    paragraph_.pieces.clear();
    paragraph_.line_starts.clear();
    paragraph_.omitted_command_bytes = 0;
    paragraph_in_progress_ = false;
    paragraph_has_text_ = false;
    indents_ = Indents{};
    next_source_begin_ = offset_;
}

// ----------------------------------------------------------------- source offsets -----

void ParagraphCollector::note_offset(uint32_t offset)
{
    if (!offset_known_) {
        offset_known_ = true;
        offset_ = offset_before_ = next_source_begin_ = offset;
    } else if (offset != offset_) {
        offset_before_ = offset_;
        offset_ = offset;
    }
}

// Where the bytes behind this event begin: where those of the last one ended. After a jump
// back, to a header's text or to the first byte of a command that was looked at ahead, one
// byte is what there was.
uint32_t ParagraphCollector::piece_source() const
{
    if (offset_before_ < offset_) {
        return offset_before_;
    }
    return offset_ == 0 ? 0 : offset_ - 1;
}

void ParagraphCollector::set_source_range()
{
    const bool text_elsewhere = block_.has_value() && paragraph_has_text_;
    paragraph_.source_begin =
        text_elsewhere ? paragraph_.pieces.front().source : next_source_begin_;
    paragraph_.source_end = text_elsewhere ? text_end_ : offset_;
}

} // namespace pfsdoc::reading
