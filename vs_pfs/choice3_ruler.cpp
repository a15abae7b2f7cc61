// A ruler line in the text of a First Choice 3 document: three unused bytes, then one byte
// a column up to a 0x0D, with a mark for each tab stop and brackets for the margins:
//
//   [....T.........T..............T....]
//
// Two byte values are prefixes: they and the byte after them make up one empty column. The
// column counter has 8 bits. Data that end inside a ruler end it like a 0x0D.
// Test: tests/module/choice3_ruler_test.cpp.
#include "formats/first_choice.h"
#include "vs_pfs/document_headers.h"
#include "vs_pfs/formatting.h"

#include <algorithm>
#include <iterator>

namespace vs_pfs {
namespace {

using namespace formats::choice;

constexpr uint8_t ruler_end = formats::carriage_return;

void clear_tab_table(SavedState &saved)
{
    saved.tabCount = 0;
    std::fill(std::begin(saved.tabPos), std::end(saved.tabPos), tab_table_end);
    std::fill(std::begin(saved.tabKind), std::end(saved.tabKind), tab_kind_ordinary);
}

void apply_mark(SavedState &saved, int32_t byte, uint8_t column)
{
    switch (byte) {
    case mark_tab_stop: saved.tabPos[saved.tabCount++] = column; break;
    case mark_left_margin: saved.leftMargin = column; break;
    case mark_right_margin: saved.rightMargin = column; break;
    default: break;
    }
}

} // namespace

int32_t Fc3GetRuler(VwCharStream *stream, VwInstance *instance)
{
    SavedState &saved = instance->state.saved;
    for (int i = 0; i < ruler_unused_bytes; ++i) {
        VwCharGet(stream);
    }
    clear_tab_table(saved);
    uint8_t column = 0;
    int32_t byte = VwCharGet(stream);
    // A hundredth stop fills the table, terminator's slot included, and ends the ruler where
    // it stands: the byte just read is lost, the rest is the next line's.
    while (byte != ruler_end && byte != end_of_data && saved.tabCount < tab_table_slots) {
        if (byte == prefix_low || byte == prefix_high) {
            VwCharGet(stream);
        }
        apply_mark(saved, byte, column);
        column = static_cast<uint8_t>(column + 1);
        byte = VwCharGet(stream);
    }
    PutTabStops(instance);
    put_margins(instance);
    return 0;
}

} // namespace vs_pfs
