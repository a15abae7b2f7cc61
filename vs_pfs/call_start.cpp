// What every read call reports before any text.
//
// The host may have stopped anywhere and come back with a saved state, so a call begins by
// announcing all that is in force. One reader sends margins and attributes the other way
// round: see "margins first" in docs/quirks.md.
// Tests: tests/module/*_line_reader_test.cpp, headers_footers_test.cpp.
#include "vs_pfs/formatting.h"

namespace vs_pfs {
namespace {

// False: the host wants the call to end.
bool report_headers_and_footers(VwInstance *instance)
{
    while (instance->state.saved.hfPending != 0) {
        put_indents(instance, 0, 0);
        put_alignment(instance, VW_ALIGN_LEFT);
        if (ProcHeaderFooter(instance) == header_footer_stop) {
            return false;
        }
    }
    return true;
}

bool start_text(VwInstance *instance)
{
    if (!report_headers_and_footers(instance)) {
        return false;
    }
    put_indents(instance, 0, 0);
    put_alignment(instance, VW_ALIGN_LEFT);
    put_font(instance);
    put_line_spacing(instance, VW_SINGLE_SPACING);
    return true;
}

} // namespace

bool start_call(VwCharStream *stream, VwInstance *instance)
{
    instance->state.stream = stream;
    PutAttributes(instance);
    put_margins(instance);
    return start_text(instance);
}

bool start_call_margins_first(VwCharStream *stream, VwInstance *instance)
{
    instance->state.stream = stream;
    put_margins(instance);
    PutAttributes(instance);
    return start_text(instance);
}

} // namespace vs_pfs
