#include "lib/explain/margin_record.h"

#include "formats/write_family.h"

#include <algorithm>
#include <string>

namespace pfsdoc::explaining {

namespace {

using formats::write::record_least_size;
using formats::write::record_margins;
using formats::write::record_margins_size;

std::string margin_words(SpanBuilder &builder)
{
    const uint32_t at = builder.position();
    return "record: margins, columns " + std::to_string(builder.byte(at + 3)) + " and " +
           std::to_string(builder.byte(at + 4));
}

} // namespace

void claim_margin_record(SpanBuilder &builder)
{
    const uint32_t at = builder.position();
    const int32_t length = builder.byte(at + 1);
    const int32_t type = builder.byte(at + 2);
    const int32_t least = type == record_margins ? record_margins_size : record_least_size;
    const auto size = static_cast<uint32_t>(std::max(length, least));
    if (size > builder.size() - at) {
        builder.claim_alone(SpanKind::record, size, "record, cut off by the end of the file");
    } else if (type == record_margins) {
        builder.claim_alone(SpanKind::record, size, margin_words(builder));
    } else {
        builder.claim_alone(SpanKind::record, size,
                            "record of type " + std::to_string(type) + ": skipped");
    }
}

} // namespace pfsdoc::explaining
