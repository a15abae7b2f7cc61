// Records in the text of Write-family documents: 0x07, the record's length in bytes (both
// of these included), its type, and what belongs to it. Type 1 sets the margins; all others
// are passed over. A length shorter than what has been read by then passes over nothing.
// Test: tests/module/margin_record_test.cpp.
#include "document_headers.h"

namespace vs_pfs {
namespace {

constexpr int32_t type_margins = 1;
constexpr int32_t size_with_type = 3;
constexpr int32_t size_with_margins = 5;

} // namespace

void MarginsFontRecord(VwInstance *instance)
{
    VwCharStream *stream = instance->state.stream;
    const int32_t length = VwCharGet(stream);
    int32_t size = size_with_type;
    if (VwCharGet(stream) == type_margins) {
        instance->state.saved.leftMargin = static_cast<uint16_t>(VwCharGet(stream) - 1);
        instance->state.saved.rightMargin = static_cast<uint16_t>(VwCharGet(stream) - 1);
        size = size_with_margins;
    }
    for (; size < length; ++size) {
        VwCharGet(stream);
    }
}

} // namespace vs_pfs
