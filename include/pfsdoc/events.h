// Typed events: one type for each output routine that the module calls, with the routine's
// arguments unchanged. Everything above the module session uses these, never raw calls.
#pragma once

#include "pfsdoc/export.h"

#include <cstdint>
#include <string_view>
#include <variant>

namespace pfsdoc {

struct Character {
    int32_t byte; // 0 to 255; -1: a missing byte of a truncated header text
    bool operator==(const Character &) const = default;
};
// A space in a line of spaces only, or one byte of an embedded command, which extends from one
// '*' to the next.
struct SpecialCharacter {
    int32_t byte;
    int32_t type;
    bool operator==(const SpecialCharacter &) const = default;
};
struct PageBreak {
    int32_t type;
    int32_t second;
    bool operator==(const PageBreak &) const = default;
};
struct AttributeChange {
    int32_t code;
    int32_t on;
    bool operator==(const AttributeChange &) const = default;
};
struct Font {
    int32_t value;
    bool operator==(const Font &) const = default;
};
struct Alignment {
    int32_t value; // VwAlignment
    bool operator==(const Alignment &) const = default;
};
// In twips from the margins. Reported after a paragraph's text and before its break.
struct Indents {
    int32_t left;
    int32_t right;
    int32_t first_line;
    bool operator==(const Indents &) const = default;
};
struct TabStopsBegin {
    bool operator==(const TabStopsBegin &) const = default;
};
struct TabStopsEnd {
    bool operator==(const TabStopsEnd &) const = default;
};
struct TabStop {
    uint16_t kind; // VwTabKind
    uint16_t alignment_character;
    uint16_t leader_character;
    uint32_t position; // twips from the page's left edge
    bool operator==(const TabStop &) const = default;
};
struct Margins {
    int32_t left;  // twips from the page's left edge
    int32_t right; // twips from the page's left edge
    bool operator==(const Margins &) const = default;
};
struct HeaderFooter {
    int32_t kind; // 1 header, 2 footer
    int32_t second;
    bool operator==(const HeaderFooter &) const = default;
};
struct Break {
    int32_t code; // VwBreak
    int32_t second;
    bool operator==(const Break &) const = default;
};
struct SectionStart {
    int32_t value;
    bool operator==(const SectionStart &) const = default;
};
struct LineSpacing {
    int32_t first;
    int32_t twips;
    int32_t third;
    int32_t fourth;
    bool operator==(const LineSpacing &) const = default;
};

using Event = std::variant<Character, SpecialCharacter, PageBreak, AttributeChange, Font, Alignment,
                           Indents, TabStopsBegin, TabStopsEnd, TabStop, Margins, HeaderFooter,
                           Break, SectionStart, LineSpacing>;

// Receives a document's events in order.
class PFSDOC_API EventSink {
public:
    virtual ~EventSink() = default;
    // `offset` is the file position after the bytes that caused the event, or 0 if offsets were
    // not requested. The return value matters only after a paragraph Break: 1 ends the read call.
    virtual int32_t on_event(const Event &event, uint32_t offset) = 0;
    // A run of one or more consecutive characters, 0 to 255; only if offsets were not requested.
    // By default each is passed to on_event.
    virtual void on_characters(std::string_view bytes)
    {
        for (const char byte : bytes) {
            on_event(Character{static_cast<unsigned char>(byte)}, 0);
        }
    }
};

} // namespace pfsdoc
