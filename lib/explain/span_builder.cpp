#include "lib/explain/span_builder.h"

#include "pfsdoc/attribute_names.h"

#include <algorithm>

namespace pfsdoc::explaining {

namespace {

constexpr std::string_view words_for_attribute_bytes(uint32_t count)
{
    switch (count) {
    case 0: return "";
    case 1: return ", each character with its attribute byte";
    default: return ", each character with its two attribute bytes";
    }
}

std::string text_words(uint32_t attribute_bytes, AttributeSet attributes)
{
    std::string words = "text";
    for (const AttributeName &entry : attribute_names) {
        if ((attributes & attribute_bit(entry.code)) != 0) {
            words.append(words == "text" ? ": " : ", ").append(entry.name);
        }
    }
    return words.append(words_for_attribute_bytes(attribute_bytes));
}

} // namespace

void SpanBuilder::begin(SpanKind kind, std::string_view words)
{
    finish();
    span_ = Span{};
    span_.offset = position_;
    span_.kind = kind;
    span_.words = words;
}

void SpanBuilder::take(uint32_t length)
{
    for (; length > 0 && position_ < size(); --length) {
        span_.bytes.push_back(static_cast<char>(std::max(byte(position_), 0)));
        ++position_;
    }
}

void SpanBuilder::claim(SpanKind kind, uint32_t length, std::string_view words)
{
    length = std::min(length, size() - position_);
    while (length > 0) {
        if (!joinable_ || span_.kind != kind || span_.words != words || !has_room(1)) {
            begin(kind, words);
            joinable_ = true;
        }
        const auto room = static_cast<uint32_t>(longest_span - span_.bytes.size());
        const uint32_t taken = std::min(length, room);
        take(taken);
        length -= taken;
    }
}

Span &SpanBuilder::claim_alone(SpanKind kind, uint32_t length, std::string_view words)
{
    begin(kind, words);
    take(length);
    return span_;
}

void SpanBuilder::claim_character(uint8_t character, uint32_t attribute_bytes,
                                  AttributeSet attributes)
{
    const SpanKind kind = attribute_bytes == 0 ? SpanKind::text : SpanKind::attributed_text;
    const uint32_t length = 1 + attribute_bytes;
    if (!joinable_ || span_.kind != kind || span_.attribute_bytes != attribute_bytes ||
        span_.attributes != attributes || !has_room(length)) {
        begin(kind, text_words(attribute_bytes, attributes));
        span_.attribute_bytes = attribute_bytes;
        span_.attributes = attributes;
        joinable_ = true;
    }
    take(length);
    span_.characters.push_back(static_cast<char>(character));
}

void SpanBuilder::claim_to(uint32_t end, SpanKind kind, std::string_view words)
{
    if (end > position_) {
        claim(kind, end - position_, words);
    }
}

void SpanBuilder::separate()
{
    joinable_ = false;
}

void SpanBuilder::dispute()
{
    span_.disputed = true;
}

void SpanBuilder::finish()
{
    joinable_ = false;
    if (!span_.bytes.empty()) {
        sink_.span(span_);
        span_.bytes.clear();
    }
}

} // namespace pfsdoc::explaining
