// Cells are shown as their bytes; each that is not plain text is followed by its type: a style as
// its bits, 'h' hidden, 'c' of a command, 'r' raw.
#include "builder/description_parts.h"

#include <gtest/gtest.h>

using namespace pfs_builder;

namespace {

std::string cell_text(const Cell &cell)
{
    std::string text = cell.bytes;
    text += cell.style != style_none ? std::to_string(cell.style) : "";
    text += cell.hidden ? "h" : "";
    text += cell.kind == CellKind::command ? "c" : "";
    text += cell.kind == CellKind::raw ? "r" : "";
    return text;
}

std::vector<SourceLine> lines_of(const std::vector<std::string> &texts)
{
    std::vector<SourceLine> lines;
    for (const std::string &text : texts) {
        lines.push_back({{0, static_cast<int>(lines.size()) + 1}, text});
    }
    return lines;
}

std::string cells_of(const std::vector<std::string> &texts)
{
    const ParsedText result = parse_text(lines_of(texts));
    EXPECT_FALSE(result.problem) << result.problem->what;
    std::string all;
    for (const Cell &cell : result.cells) {
        all += cell_text(cell);
    }
    return all;
}

// "LINE: what is wrong"
std::string problem_of(const std::vector<std::string> &texts)
{
    const ParsedText result = parse_text(lines_of(texts));
    return result.problem ? std::to_string(result.location.line) + ": " + result.problem->what : "";
}

} // namespace

TEST(BuilderDescriptionText, JoinsLinesWithASpace)
{
    EXPECT_EQ(cells_of({"ab", "cd"}), "ab cd");
}

TEST(BuilderDescriptionText, TurnsStylesOnAndOff)
{
    EXPECT_EQ(cells_of({"a{b}b{i}c{/b}d{/i}e"}), "ab2c6d4e");
    EXPECT_EQ(cells_of({"{u}a{/u}{sup}b{/sup}{sub}c{/sub}"}), "a1b8c16");
    EXPECT_EQ(cells_of({"{b}a", "b{/b}"}), "a2 2b2");
}

TEST(BuilderDescriptionText, MarksWhatCannotBeTyped)
{
    EXPECT_EQ(cells_of({"a{tab}b"}), "a\tb");
    EXPECT_EQ(cells_of({"{{b} }"}), "{b} }");
    EXPECT_EQ(cells_of({"a{x41 42}b{x8d}"}), "aABrb\x8Dr");
    EXPECT_EQ(cells_of({"a{hide}b c{/hide}d"}), "abh hchd");
}

TEST(BuilderDescriptionText, TakesCommandsUnchanged)
{
    EXPECT_EQ(cells_of({"{b}*C*a{/b}"}), "*cCc*ca2");
    EXPECT_EQ(cells_of({"*P {b}*"}), "*cPc c{cbc}c*c");
    EXPECT_EQ(cells_of({"2 * 3 *x*"}), "2 * 3 *x*");
}

TEST(BuilderDescriptionText, ConvertsToCodePage437)
{
    EXPECT_EQ(cells_of({"é½"}), "\x82\xAB");
}

TEST(BuilderDescriptionText, ReportsWhatIsWrongAndWhere)
{
    EXPECT_EQ(problem_of({"ab", "c€"}), "2: character U+20AC is not in code page 437");
    EXPECT_EQ(problem_of({"ab\xC3"}), "1: byte 0xC3 that is not UTF-8 is not in code page 437");
    EXPECT_EQ(problem_of({"a", "{bold}"}), "2: {bold} is no mark");
    EXPECT_EQ(problem_of({"{}"}), "1: {} is no mark");
    EXPECT_EQ(problem_of({"{b"}), "1: this brace is never closed");
    EXPECT_EQ(problem_of({"{x8}"}), "1: {x8} holds no bytes");
    EXPECT_EQ(problem_of({"{x}"}), "1: {x} holds no bytes");
    EXPECT_EQ(problem_of({"{b}{b}"}), "1: {b} is open already");
    EXPECT_EQ(problem_of({"a{/i}"}), "1: {/i} closes what is not open");
    EXPECT_EQ(problem_of({"{hide}{hide}"}), "1: {hide} is open already");
    EXPECT_EQ(problem_of({"{b}a", "b"}),
              "2: a style or a suppressed stretch is open at the paragraph's end");
    EXPECT_EQ(problem_of({"a *P 27"}), "1: a command begins at this asterisk and is never closed");
    EXPECT_EQ(problem_of({"*P é*"}), "1: a command holds a character that is not ASCII");
}
