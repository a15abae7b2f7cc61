// Events in the order in which a document reports them, for the tests of what is above the session.
#pragma once

#include "pfsdoc/attribute_names.h"
#include "pfsdoc/events.h"
#include "vs_pfs.h"

#include <cstdint>
#include <initializer_list>
#include <string_view>
#include <vector>

namespace tests {

inline constexpr int32_t bold = static_cast<int32_t>(pfsdoc::AttributeCode::bold);
inline constexpr int32_t italic = static_cast<int32_t>(pfsdoc::AttributeCode::italic);
inline constexpr int32_t underline = static_cast<int32_t>(pfsdoc::AttributeCode::underline);
inline constexpr int32_t subscript = static_cast<int32_t>(pfsdoc::AttributeCode::subscript);
inline constexpr int32_t superscript = static_cast<int32_t>(pfsdoc::AttributeCode::superscript);

// Reads as the document does: TypedEvents().margins(10, 70).text("Dear Sir").paragraph().
// Columns stand for twips. Offsets are 0 unless `at` sets the one of all that follows.
class TypedEvents {
public:
    struct At {
        pfsdoc::Event event;
        uint32_t offset;
    };

    TypedEvents &add(const pfsdoc::Event &event)
    {
        told_.push_back({event, offset_});
        return *this;
    }
    TypedEvents &at(uint32_t offset)
    {
        offset_ = offset;
        return *this;
    }
    // From here on each event of `text` and `special` comes one byte further.
    TypedEvents &text(std::string_view bytes)
    {
        for (const char byte : bytes) {
            step();
            add(pfsdoc::Character{static_cast<unsigned char>(byte)});
        }
        return *this;
    }
    TypedEvents &special(std::string_view bytes)
    {
        for (const char byte : bytes) {
            step();
            add(pfsdoc::SpecialCharacter{static_cast<unsigned char>(byte), 7});
        }
        return *this;
    }
    TypedEvents &margins(int32_t left, int32_t right)
    {
        return add(pfsdoc::Margins{left * VW_TWIPS_PER_COLUMN, right * VW_TWIPS_PER_COLUMN});
    }
    TypedEvents &indents(int32_t left, int32_t first_line)
    {
        return add(
            pfsdoc::Indents{left * VW_TWIPS_PER_COLUMN, 0, first_line * VW_TWIPS_PER_COLUMN});
    }
    TypedEvents &tabs(std::initializer_list<uint32_t> left,
                      std::initializer_list<uint32_t> decimal = {})
    {
        add(pfsdoc::TabStopsBegin{});
        for (const uint32_t column : left) {
            add(pfsdoc::TabStop{VW_TAB_LEFT, 0, 0, column * VW_TWIPS_PER_COLUMN});
        }
        for (const uint32_t column : decimal) {
            add(pfsdoc::TabStop{VW_TAB_DECIMAL, '.', 0, column * VW_TWIPS_PER_COLUMN});
        }
        return add(pfsdoc::TabStopsEnd{});
    }
    TypedEvents &alignment(VwAlignment value)
    {
        return add(pfsdoc::Alignment{value});
    }
    TypedEvents &attribute(int32_t code, bool on)
    {
        return add(pfsdoc::AttributeChange{code, on});
    }
    TypedEvents &spacing(int32_t twips)
    {
        return add(pfsdoc::LineSpacing{1, twips, 0, 0});
    }
    TypedEvents &page_break()
    {
        return add(pfsdoc::PageBreak{4, 0});
    }
    TypedEvents &new_page()
    {
        return page_break().special("*NEW PAGE*");
    }
    TypedEvents &paragraph()
    {
        return add(pfsdoc::Break{VW_BREAK_PARAGRAPH, 0});
    }
    TypedEvents &end()
    {
        return add(pfsdoc::Break{VW_BREAK_END_OF_DOCUMENT, 0});
    }
    TypedEvents &open_block()
    {
        return add(pfsdoc::Break{VW_BREAK_BLOCK_OPEN, 0});
    }
    TypedEvents &header()
    {
        return open_block().add(pfsdoc::HeaderFooter{1, 3});
    }
    TypedEvents &footer()
    {
        return open_block().add(pfsdoc::HeaderFooter{2, 3});
    }
    TypedEvents &close_block()
    {
        return add(pfsdoc::Break{VW_BREAK_BLOCK_CLOSE, 0});
    }

    // A paragraph with its end.
    TypedEvents &line(std::string_view bytes)
    {
        return text(bytes).paragraph();
    }

    void tell(pfsdoc::EventSink &sink) const
    {
        for (const At &told : told_) {
            sink.on_event(told.event, told.offset);
        }
    }

private:
    void step()
    {
        if (offset_ != 0) {
            ++offset_;
        }
    }

    std::vector<At> told_;
    uint32_t offset_ = 0;
};

} // namespace tests
