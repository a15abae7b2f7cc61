// Header and footer lines, reported once a document, before any text.
//
// Two header lines form a block and two footer lines another:
//
//   open, kind, line 1 . end, line 2 . end, close
//
// One call reports one line, so that the host can stop at each line's end. A stop at the
// last line of a block leaves the close owed; the next call pays it before anything else.
// The texts are in the file's header; the stream returns to the body after each.
//
// hfPending says what is left to report. Footer line 2 is marked with three bits, which
// bring both header lines with it: see "footer line 2" in docs/quirks.md.
// Test: tests/module/headers_footers_test.cpp.
#include "formats/write_family.h"
#include "vs_pfs/formatting.h"

namespace vs_pfs {
namespace {

constexpr int32_t go_on = header_footer_go_on;
constexpr int32_t stop_reading = header_footer_stop;

// Lines in the order of hfTextPos and hfLength.
enum Line : int { header_1, header_2, footer_1, footer_2 };

Line first_pending_line(uint16_t pending)
{
    if ((pending & hf_header_1) != 0) {
        return header_1;
    }
    if ((pending & hf_header_2) != 0) {
        return header_2;
    }
    return (pending & hf_footer_1) != 0 ? footer_1 : footer_2;
}

bool is_header(Line line)
{
    return line == header_1 || line == header_2;
}

// The first line of a block always opens it; the second only where there was no first. What
// the host saves while the block is being opened already says so.
void open_block(VwInstance *instance, Line line)
{
    SavedState &saved = instance->state.saved;
    const bool first_of_block = line == header_1 || line == footer_1;
    if (!first_of_block && saved.hfReaderFlag != 0) {
        return;
    }
    if (first_of_block) {
        saved.hfReaderFlag = 1;
    }
    put_break(instance, VW_BREAK_BLOCK_OPEN);
    put_header_footer_kind(instance, is_header(line) ? header_block : footer_block);
}

// The reader has just announced left alignment, so that is not announced again.
void put_line_alignment(const VwInstance *instance, uint8_t align_code)
{
    if (align_code == formats::write::alignment_centred) {
        put_alignment(instance, VW_ALIGN_CENTRE);
    } else if (align_code == formats::write::alignment_right) {
        put_alignment(instance, VW_ALIGN_RIGHT);
    }
}

// Bytes are reported unchanged: attributes, commands and translations are the body's. Where
// the file is cut short the missing bytes go out as -1.
void put_line_text(VwInstance *instance, Line line)
{
    VwCharStream *stream = instance->state.stream;
    VwCharSeek(stream, instance->state.hfTextPos[line], seek_absolute);
    put_header_footer_attributes(instance, true);
    put_line_alignment(instance,
                       is_header(line) ? instance->state.headerAlign : instance->state.footerAlign);
    const auto length = static_cast<int16_t>(instance->state.hfLength[line]);
    for (int i = 0; i < length; ++i) {
        put_character(instance, VwCharGet(stream));
    }
}

int32_t close_block(VwInstance *instance)
{
    instance->state.saved.hfReaderFlag = 0;
    if (put_paragraph_end(instance)) {
        instance->state.saved.hfPending |= hf_owed_close;
        return stop_reading;
    }
    TurnOffAttr(instance);
    put_break(instance, VW_BREAK_BLOCK_CLOSE);
    return go_on;
}

int32_t pay_owed_close(VwInstance *instance)
{
    TurnOffAttr(instance);
    instance->state.saved.hfPending &= static_cast<uint16_t>(~hf_owed_close);
    put_break(instance, VW_BREAK_BLOCK_CLOSE);
    return go_on;
}

// Ends the first line of a block: its last one unless the second is pending.
int32_t end_first_line(VwInstance *instance, uint16_t line_bits, uint16_t second_line_bits)
{
    uint16_t &pending = instance->state.saved.hfPending;
    pending &= static_cast<uint16_t>(~line_bits);
    if ((pending & second_line_bits) == 0) {
        return close_block(instance);
    }
    return put_paragraph_end(instance) ? stop_reading : go_on;
}

int32_t end_second_line(VwInstance *instance, uint16_t line_bits)
{
    instance->state.saved.hfPending &= static_cast<uint16_t>(~line_bits);
    return close_block(instance);
}

int32_t end_line(VwInstance *instance)
{
    uint16_t &pending = instance->state.saved.hfPending;
    if ((pending & hf_header_1) != 0) {
        return end_first_line(instance, hf_header_1, hf_header_2);
    }
    if ((pending & hf_header_2) != 0) {
        return end_second_line(instance, hf_header_2);
    }
    if ((pending & hf_footer_1) != 0) {
        return end_first_line(instance, hf_footer_1, hf_footer_2);
    }
    if ((pending & hf_footer_2) != 0) {
        return end_second_line(instance, hf_footer_2);
    }
    // Only a saved state from elsewhere has none of these bits; dropping what it has
    // instead keeps the caller's loop from running for ever.
    pending = 0;
    return go_on;
}

} // namespace

int32_t ProcHeaderFooter(VwInstance *instance)
{
    FilterState &state = instance->state;
    if ((state.saved.hfPending & hf_owed_close) != 0) {
        return pay_owed_close(instance);
    }
    const uint32_t body = VwCharTell(state.stream);
    const Line line = first_pending_line(state.saved.hfPending);
    state.saved.hfAttrState = is_header(line) ? state.headerAttrs : state.footerAttrs;
    open_block(instance, line);
    put_line_text(instance, line);
    VwCharSeek(state.stream, body, seek_absolute);
    state.saved.seekPos = body;
    return end_line(instance);
}

} // namespace vs_pfs
