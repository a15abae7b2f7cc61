#include "loss_report.h"

namespace pfsdoc {

namespace {

struct LossTexts {
    Loss loss;
    std::string_view name;
    std::string_view words;
};

constexpr LossTexts losses[] = {
    {Loss::bold, "bold", "runs of bold text"},
    {Loss::italic, "italic", "runs of italic text"},
    {Loss::underline, "underline", "runs of underlined text"},
    {Loss::subscript, "subscript", "runs of subscript"},
    {Loss::superscript, "superscript", "runs of superscript"},
    {Loss::alignment, "alignment", "paragraphs' alignments"},
    {Loss::indents, "indents", "paragraphs' indents"},
    {Loss::tab_stops, "tab_stops", "paragraphs' tab stops"},
    {Loss::line_spacing, "line_spacing", "paragraphs' line spacings"},
    {Loss::margins, "margins", "changes of the margins"},
    {Loss::page_break, "page_break", "page breaks"},
    {Loss::header_footer, "header_footer", "header and footer lines"},
    {Loss::command, "command", "embedded commands"},
    {Loss::cut_command, "cut_command", "embedded commands' ends"},
    {Loss::character, "character", "characters unknown to the character set"},
};

constexpr bool in_order()
{
    std::size_t index = 0;
    for (const LossTexts &texts : losses) {
        if (static_cast<std::size_t>(texts.loss) != index++) {
            return false;
        }
    }
    return index == static_cast<std::size_t>(Loss::character) + 1;
}
static_assert(in_order());

} // namespace

std::string_view loss_words(Loss loss)
{
    return losses[static_cast<std::size_t>(loss)].words;
}

std::string_view loss_name(Loss loss)
{
    return losses[static_cast<std::size_t>(loss)].name;
}

void LossReport::add(Loss loss, uint32_t source, uint64_t count)
{
    const auto index = static_cast<std::size_t>(loss);
    if (counts_[index] == 0 && count != 0) {
        first_sources_[index] = source;
    }
    counts_[index] += count;
}

std::vector<LossEntry> LossReport::entries() const
{
    std::vector<LossEntry> entries;
    for (const LossTexts &texts : losses) {
        const auto index = static_cast<std::size_t>(texts.loss);
        if (counts_[index] != 0) {
            entries.push_back({texts.loss, counts_[index], first_sources_[index]});
        }
    }
    return entries;
}

} // namespace pfsdoc
