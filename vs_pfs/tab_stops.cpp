// The tab-stop table, reported whole at the start of each read call and after each ruler:
// begin, at most 30 stops, end. Test: tests/module/tab_stops_test.cpp.
#include "vs_pfs/formatting.h"

namespace vs_pfs {
namespace {

// The table holds up to 100 stops; those beyond the thirtieth are not reported.
constexpr int most_reported_stops = 30;

VwTabStop tab_stop(uint8_t kind, uint16_t column)
{
    const bool decimal = kind == tab_kind_decimal;
    VwTabStop stop = {};
    stop.kind = decimal ? VW_TAB_DECIMAL : VW_TAB_LEFT;
    stop.alignmentCharacter = decimal ? tab_kind_decimal : 0;
    stop.position = static_cast<uint32_t>(static_cast<int16_t>(column) * VW_TWIPS_PER_COLUMN);
    return stop;
}

} // namespace

int32_t PutTabStops(VwInstance *instance)
{
    const SavedState &saved = instance->state.saved;
    put_tab_stops_begin(instance);
    for (int i = 0; i < most_reported_stops && i < static_cast<int16_t>(saved.tabCount); ++i) {
        put_tab_stop(instance, tab_stop(saved.tabKind[i], saved.tabPos[i]));
    }
    put_tab_stops_end(instance);
    return 0;
}

} // namespace vs_pfs
