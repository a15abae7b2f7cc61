#include "cli/near_miss.h"

#include <algorithm>
#include <cstddef>

namespace pfsdoc::cli {

namespace {

// Longer words have room for two mistakes.
constexpr std::size_t letters_for_one_mistake = 3;
constexpr std::size_t letters_for_two_mistakes = 6;
constexpr std::size_t longest_word = 64; // beyond it nobody mistyped anything
constexpr std::size_t shortest_beginning = 2;

std::size_t mistakes_allowed(std::string_view word)
{
    if (word.size() < letters_for_one_mistake || word.size() > longest_word) {
        return 0;
    }
    return word.size() < letters_for_two_mistakes ? 1 : 2;
}

// The number of letters to insert, to delete, to replace, or to swap with the next, that lead
// from one word to the other.
std::size_t distance(std::string_view one, std::string_view other)
{
    using Row = std::vector<std::size_t>;
    Row before_last(other.size() + 1);
    Row last(other.size() + 1);
    for (std::size_t j = 0; j <= other.size(); ++j) {
        last[j] = j;
    }
    for (std::size_t i = 1; i <= one.size(); ++i) {
        Row row(other.size() + 1, i);
        for (std::size_t j = 1; j <= other.size(); ++j) {
            const std::size_t replaced = last[j - 1] + (one[i - 1] == other[j - 1] ? 0 : 1);
            row[j] = std::min({replaced, last[j] + 1, row[j - 1] + 1});
            const bool is_swapped =
                i > 1 && j > 1 && one[i - 1] == other[j - 2] && one[i - 2] == other[j - 1];
            row[j] = is_swapped ? std::min(row[j], before_last[j - 2] + 1) : row[j];
        }
        before_last = std::move(last);
        last = std::move(row);
    }
    return last[other.size()];
}

} // namespace

std::string lower_case(std::string_view word)
{
    std::string result(word);
    std::transform(result.begin(), result.end(), result.begin(), [](char letter) {
        return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
    });
    return result;
}

std::string near_miss(std::string_view word, const std::vector<std::string> &known)
{
    const std::string typed = lower_case(word);
    std::size_t best = mistakes_allowed(typed) + 1;
    std::string found;
    for (const std::string &candidate : known) {
        const bool begins = typed.size() >= shortest_beginning && candidate.starts_with(typed);
        const std::size_t mistakes = begins                         ? 0
                                     : mistakes_allowed(typed) == 0 ? best
                                                                    : distance(typed, candidate);
        if (mistakes < best) {
            best = mistakes;
            found = candidate;
        }
    }
    return found;
}

std::string did_you_mean(std::string_view word, const std::vector<std::string> &known,
                         const std::string &otherwise)
{
    const std::string meant = near_miss(word, known);
    return meant.empty() ? otherwise : "did you mean " + meant + "?";
}

} // namespace pfsdoc::cli
