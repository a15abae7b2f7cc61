#include "pfsdoc/loss_report.h"

namespace pfsdoc {

namespace {

struct LossTexts {
    Loss loss;
    std::string_view name;
    std::string_view words;
};

constexpr LossTexts losses[] = {
    {Loss::bold, "bold", "bold text"},
    {Loss::italic, "italic", "italic text"},
    {Loss::underline, "underline", "underlined text"},
    {Loss::subscript, "subscript", "subscripts"},
    {Loss::superscript, "superscript", "superscripts"},
    {Loss::alignment, "alignment", "alignments of paragraphs"},
    {Loss::indents, "indents", "indents of paragraphs"},
    {Loss::tab_stops, "tab_stops", "tab stops"},
    {Loss::line_spacing, "line_spacing", "line spacings"},
    {Loss::margins, "margins", "changes of the margins"},
    {Loss::page_break, "page_break", "page breaks"},
    {Loss::header_footer, "header_footer", "header and footer lines"},
    {Loss::command, "command", "embedded commands"},
    {Loss::cut_command, "cut_command", "ends of embedded commands"},
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
