// What of a document a format could not say: counted by the writer as it goes, so that
// nobody has to compare by eye. Test: tests/lib/writers/loss_report_test.cpp.
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
    margins, // paragraphs whose margins differ from those before them
    page_break,
    header_footer, // lines
    command,       // commands embedded in the text, those without effect on it
    cut_command,   // commands too long to be kept whole
    character,     // bytes that the character set does not define
};

struct LossEntry {
    Loss loss;
    uint64_t count;
    uint32_t first_source; // offset in the file; 0 where offsets were not asked for
};

// In the plural: "embedded commands".
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
