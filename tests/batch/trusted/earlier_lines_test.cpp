// Lines are found again in files that may hold anything.
#include "batch/trusted/earlier_lines.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

using pfsdoc::batch::EarlierLines;
using pfsdoc::batch::longest_line;

pfsdoc::base::Descriptor file_of(const std::string &text)
{
    std::FILE *file = std::tmpfile();
    EXPECT_EQ(::write(::fileno(file), text.data(), text.size()), static_cast<ssize_t>(text.size()));
    pfsdoc::base::Descriptor descriptor(::dup(::fileno(file)));
    std::fclose(file);
    return descriptor;
}

// A line's output is what is before its first space.
std::string first_word(std::string_view line)
{
    return std::string(line.substr(0, line.find(' ')));
}

using Found = std::vector<std::string>;

Found unclaimed(const EarlierLines &lines)
{
    Found found;
    lines.visit_unclaimed([&](const Found &some) {
        for (const std::string &line : some) {
            found.push_back(line);
        }
    });
    return found;
}

TEST(EarlierLines, AreFoundByTheirOutputTheNewestFirst)
{
    EarlierLines lines(first_word);
    lines.add_file(file_of("a 1\nb 2\na 3\n"));
    lines.add_file(file_of("\na 4\nc 5"));
    lines.sort();
    EXPECT_EQ(lines.find("a"), (Found{"a 4", "a 3", "a 1"}));
    EXPECT_EQ(lines.find("b"), Found{"b 2"});
    EXPECT_EQ(lines.find("c"), Found()) << "the line was cut";
    EXPECT_EQ(lines.find("d"), Found());
}

TEST(EarlierLines, AreLeftUntilTheyAreClaimed)
{
    EarlierLines lines(first_word);
    lines.add_file(file_of("a 1\nb 2\na 3\n"));
    lines.sort();
    lines.claim("b");
    lines.claim("none");
    EXPECT_EQ(unclaimed(lines), (Found{"a 3", "a 1"}));
    lines.claim("a");
    EXPECT_EQ(unclaimed(lines), Found());
}

TEST(EarlierLines, ArePassedOverWhereTheyAreTooLong)
{
    const std::string longest = "long " + std::string(longest_line - 5, 'x');
    EarlierLines lines(first_word);
    lines.add_file(file_of("a 1\nlonger " + std::string(3 * longest_line, 'x') + "\n" + longest +
                           "\nlonger " + longest + "\nb 2\n"));
    lines.sort();
    EXPECT_EQ(lines.find("a"), Found{"a 1"});
    EXPECT_EQ(lines.find("b"), Found{"b 2"});
    EXPECT_EQ(lines.find("long"), Found{longest});
    EXPECT_EQ(lines.find("longer"), Found());
}

// A file of nothing but one name would make each look-up as long as the file.
TEST(EarlierLines, AreFoundInBoundedTime)
{
    std::string text;
    for (int i = 0; i < 1000; ++i) {
        text += "a " + std::to_string(i) + "\n";
    }
    EarlierLines lines(first_word);
    lines.add_file(file_of(text));
    lines.sort();
    EXPECT_EQ(lines.find("a").front(), "a 999");
    EXPECT_LT(lines.find("a").size(), 100U);
}

} // namespace
