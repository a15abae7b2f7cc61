#include "lib/explain/margin_record.h"

#include <algorithm>
#include <string>

namespace pfsdoc::explaining {

namespace {

constexpr int32_t type_margins = 1;
// Read whatever the record's length says.
constexpr int32_t size_with_type = 3;
constexpr int32_t size_with_margins = 5;

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
    const int32_t least = type == type_margins ? size_with_margins : size_with_type;
    const auto size = static_cast<uint32_t>(std::max(length, least));
    if (size > builder.size() - at) {
        builder.claim_alone(SpanKind::record, size, "record, cut off by the end of the file");
    } else if (type == type_margins) {
        builder.claim_alone(SpanKind::record, size, margin_words(builder));
    } else {
        builder.claim_alone(SpanKind::record, size,
                            "record of type " + std::to_string(type) + ": passed over");
    }
}

} // namespace pfsdoc::explaining
