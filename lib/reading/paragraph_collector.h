// Turns the event stream into blocks, one at a time: memory is bounded by the largest
// paragraph, never by the document. A paragraph beyond max_paragraph_bytes,
// max_paragraph_pieces or max_paragraph_lines ends the reading.
//
// The stream reports a paragraph in pieces and late: characters first, then the indents,
// then the break. So the collector holds one paragraph until its break, completes it with
// what has been reported meanwhile, hands it on and forgets it. Which report belongs to which
// paragraph:
//
//   indents        the last report before the break. A paragraph without one has none,
//                  whatever the paragraph before had: not every kind resets them.
//   alignment      as in force at the break
//   margins        as in force at the break: a record within the paragraph may have set them
//   tabs           as in force where the paragraph's text begins
//   line spacing   depends on the kind of document: see LineSpacingRule
//
// Reports that a read repeats at its start change nothing. Events that do not balance are
// taken for what they can mean: a paragraph or block still open when its end is overdue ends
// there, an end without a beginning is ignored. Tests:
// tests/lib/reading/paragraph_collector_test.cpp.
#pragma once

#include "lib/reading/byte_window.h"
#include "pfsdoc/block_sink.h"
#include "pfsdoc/events.h"
#include "pfsdoc/identify.h"
#include "pfsdoc/paragraph.h"
#include "pfsdoc/reading_stopped.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace pfsdoc::reading {

// Where to look for a paragraph's spacing.
//
// PFS: First Choice 2 reports a line's spacing at the line's end, just before the break: the
// value at the break is the paragraph's. Professional Write reports it at the line's type
// byte, and once more where that byte ends the line before: at the break the value is already
// the next line's, and only a paragraph's last line has a type byte that says anything of
// spacing. There the value at the last character is the paragraph's; an empty paragraph takes
// the one at the break. The other kinds never change it and fit either rule.
enum class LineSpacingRule { at_last_character, at_break };

LineSpacingRule line_spacing_rule(DocumentKind kind);

// What a collector knows between two paragraphs from what came before.
struct CollectorContext {
    AttributeSet attributes = 0;
    int32_t alignment = 0;
    int32_t line_spacing = 0;
    Margins margins{};
    TabStops tab_stops;
    std::optional<BlockKind> block; // that is open
    uint32_t offset_before = 0;     // the last one that differed from where they meet
};

// What ends the reading then. Where events come without offsets it has none either: whoever knows
// the position adds it.
class ParagraphTooLarge final : public ReadingStopped {
public:
    explicit ParagraphTooLarge(std::optional<uint64_t> offset);
};

class ParagraphCollector final : public EventSink {
public:
    // No command that does something comes near this length; a longer one is a command
    // whose closing asterisk is missing, and its echo may run through the whole document.
    static constexpr std::size_t max_command_bytes = 4096;
    // The module reports 30 at most, and its own table holds 99.
    static constexpr std::size_t max_tab_stops = 99;

    explicit ParagraphCollector(BlockSink &sink,
                                LineSpacingRule rule = LineSpacingRule::at_last_character);

    // From here on the document's bytes are looked at to find where its lines begin. The
    // source must outlive the collector; events must come with offsets.
    void find_lines(ByteSource &source, DocumentKind kind);

    // Always 0: no reason to stop.
    int32_t on_event(const Event &event, uint32_t offset) override;
    void on_characters(std::string_view bytes) override;

    // As it is behind a paragraph's break at this offset, which may be still to come.
    CollectorContext context(uint32_t offset) const;
    // Goes on at an offset, after paragraphs that another collector has handed on. A block
    // that is open there is not begun again.
    void resume(const CollectorContext &context, uint32_t offset);

    // Ends the document. Its last paragraph is handed on when its end is reported, or here.
    void finish();

private:
    void on(const Character &event);
    void on(const SpecialCharacter &event);
    void on(const PageBreak &event);
    void on(const AttributeChange &event);
    void on(const Font &event);
    void on(const Alignment &event);
    void on(const Indents &event);
    void on(const TabStopsBegin &event);
    void on(const TabStopsEnd &event);
    void on(const TabStop &event);
    void on(const Margins &event);
    void on(const HeaderFooter &event);
    void on(const Break &event);
    void on(const SectionStart &event);
    void on(const LineSpacing &event);

    void add_text(std::string_view bytes);
    void note_character();
    void note_offset(uint32_t offset);
    uint32_t piece_source() const;
    void add_piece(PieceKind kind);
    [[noreturn]] void stop_at_limit() const;
    void begin_paragraph();
    void end_paragraph();
    void end_paragraph_in_progress();
    void end_block();
    void end_text();
    void set_source_range();
    void clear_paragraph();

    BlockSink &sink_;
    LineSpacingRule rule_;

    // As last reported.
    AttributeSet attributes_ = 0;
    int32_t alignment_;
    int32_t line_spacing_;
    Margins margins_{};
    Indents indents_{};
    TabStops tab_stops_;
    std::vector<TabStop> coming_tab_stops_;

    Paragraph paragraph_;
    bool paragraph_in_progress_ = false; // something stands in it
    bool paragraph_has_text_ = false;
    bool in_command_ = false;
    std::size_t command_bytes_ = 0;
    std::optional<BlockKind> block_; // that is open
    bool text_ended_ = false;        // nothing that comes later counts
    bool finished_ = false;

    // The offset of this event and the last one that differed from it: events of one
    // character come at one offset.
    uint32_t offset_ = 0;
    uint32_t offset_before_ = 0;
    bool offset_known_ = false;
    uint32_t text_end_ = 0;
    uint32_t next_source_begin_ = 0;
    uint32_t last_character_ = 0; // its offset
    std::optional<ByteWindow> window_;
    std::string_view line_ends_; // the bytes that end a line
};

} // namespace pfsdoc::reading
