// What a document contains that the output format cannot express, counted by the writer.
// Test: tests/lib/writers/loss_report_test.cpp.
#pragma once

#include "pfsdoc/export.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace pfsdoc {

enum class Loss : uint8_t {
    bold, // runs of text, for this and the other attributes
    italic,
    underline,
    subscript,
    superscript,
    alignment, // paragraphs, for this and the next four
    indents,
    tab_stops,
    line_spacing,
    margins, // paragraphs whose margins differ from the previous ones
    page_break,
    header_footer, // lines
    command,       // embedded commands that have no effect on the text
    cut_command,   // commands that were too long and have been truncated
    character,     // bytes that the character set does not define
};

struct LossEntry {
    Loss loss;
    uint64_t count;
    uint32_t first_source; // byte offset of the first in the file; 0 if offsets were not requested
};

// For people, in the plural: "embedded commands".
PFSDOC_API std::string_view loss_words(Loss loss);
// For programs: "bold", "tab_stops".
PFSDOC_API std::string_view loss_name(Loss loss);

class PFSDOC_API LossReport {
public:
    void add(Loss loss, uint32_t source, uint64_t count = 1);
    // Those that occurred, in the order of Loss.
    std::vector<LossEntry> entries() const;

private:
    static constexpr std::size_t loss_count = static_cast<std::size_t>(Loss::character) + 1;

    std::array<uint64_t, loss_count> counts_{};
    std::array<uint32_t, loss_count> first_sources_{};
};

} // namespace pfsdoc
