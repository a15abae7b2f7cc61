// Records in the text of Write-family documents: 0x07, the record's length in bytes (both
// of these included), its type, and what belongs to it. Type 1 sets the margins; all others
// are passed over. A length shorter than what has been read by then passes over nothing.
// Test: tests/module/margin_record_test.cpp.
#include "formats/write_family.h"
#include "vs_pfs/document_headers.h"

namespace vs_pfs {

void MarginsFontRecord(VwInstance *instance)
{
    VwCharStream *stream = instance->state.stream;
    const int32_t length = VwCharGet(stream);
    int32_t size = formats::write::record_least_size;
    if (VwCharGet(stream) == formats::write::record_margins) {
        instance->state.saved.leftMargin = static_cast<uint16_t>(VwCharGet(stream) - 1);
        instance->state.saved.rightMargin = static_cast<uint16_t>(VwCharGet(stream) - 1);
        size = formats::write::record_margins_size;
    }
    for (; size < length; ++size) {
        VwCharGet(stream);
    }
}

} // namespace vs_pfs
