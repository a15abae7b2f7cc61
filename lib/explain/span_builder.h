// Puts spans together: claims a file's bytes one stretch after the other, so that none is
// left out and none is claimed twice, and joins stretches that say the same.
// Test: tests/lib/explain/span_builder_test.cpp.
#pragma once

#include "lib/reading/byte_window.h"
#include "pfsdoc/explain.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace pfsdoc::explaining {

class SpanBuilder {
public:
    // Both must outlive it.
    SpanBuilder(ByteSource &source, SpanSink &sink) : window_(source), sink_(sink) {}

    // The first byte that is not claimed yet.
    uint32_t position() const
    {
        return position_;
    }
    uint32_t size() const
    {
        return window_.size();
    }
    int32_t byte(uint32_t position)
    {
        return window_.at(position);
    }

    // Each claims the next bytes, as far as the file has them.

    // Joined with what was claimed before if kind and words are the same.
    void claim(SpanKind kind, uint32_t length, std::string_view words);
    // Never joined; what follows is not joined to it either.
    Span &claim_alone(SpanKind kind, uint32_t length, std::string_view words);
    // A character as it was reported, and the attribute bytes that follow it.
    void claim_character(uint8_t character, uint32_t attribute_bytes, AttributeSet attributes);
    // Up to a position.
    void claim_to(uint32_t end, SpanKind kind, std::string_view words);

    // What is claimed next begins a span.
    void separate();
    // The span that is being put together, or was last: it is not what the module made of it.
    void dispute();
    // Delivers what is left.
    void finish();

private:
    void begin(SpanKind kind, std::string_view words);
    void take(uint32_t length);
    bool has_room(std::size_t length) const
    {
        return span_.bytes.size() + length <= longest_span;
    }

    reading::ByteWindow window_;
    SpanSink &sink_;
    uint32_t position_ = 0;
    Span span_; // without bytes: none
    bool joinable_ = false;
};

} // namespace pfsdoc::explaining
