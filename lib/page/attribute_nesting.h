// Attributes as marks around text that have to nest: which marks to close and to open where
// the attributes change.
//
// Documents switch attributes one by one in any order; formats with a begin and an end for
// each want them like brackets. So where an outer one ends, those inside it are closed too,
// and opened again behind it. Each attribute is open once at most, which bounds the depth.
// Tests: those of the writers, tests/lib/writers/pandoc_writer_test.cpp first.
#pragma once

#include "pfsdoc/attribute_names.h"
#include "pfsdoc/paragraph.h"

#include <algorithm>
#include <span>
#include <vector>

namespace pfsdoc::page {

class AttributeNesting {
public:
    // The order from the outside to the inside of those that are opened together. It must
    // outlive the nesting.
    explicit AttributeNesting(std::span<const AttributeCode> order) : order_(order) {}

    // Closes, from the inside, until only wanted ones are open: close(code) for each.
    template <typename Close> void close_unwanted(AttributeSet wanted, Close close)
    {
        const auto first_unwanted =
            std::find_if(open_.begin(), open_.end(),
                         [wanted](AttributeCode code) { return (bit_of(code) & wanted) == 0; });
        const auto kept = static_cast<std::size_t>(first_unwanted - open_.begin());
        while (open_.size() > kept) {
            close(open_.back());
            open_set_ &= static_cast<AttributeSet>(~bit_of(open_.back()));
            open_.pop_back();
        }
    }

    // Opens those that are wanted and not open: open(code) for each.
    template <typename Open> void open_wanted(AttributeSet wanted, Open open)
    {
        if ((wanted & ~open_set_) == 0) {
            return;
        }
        for (const AttributeCode code : order_) {
            const AttributeSet bit = bit_of(code);
            if ((wanted & bit) != 0 && (open_set_ & bit) == 0) {
                open(code);
                open_.push_back(code);
                open_set_ |= bit;
            }
        }
    }

    // What the order names: all that can be opened.
    AttributeSet known() const
    {
        AttributeSet all = 0;
        for (const AttributeCode code : order_) {
            all |= bit_of(code);
        }
        return all;
    }

private:
    static constexpr AttributeSet bit_of(AttributeCode code)
    {
        return attribute_bit(code);
    }

    std::span<const AttributeCode> order_;
    std::vector<AttributeCode> open_; // from the outside
    AttributeSet open_set_ = 0;
};

} // namespace pfsdoc::page
