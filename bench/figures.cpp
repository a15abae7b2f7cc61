#include "bench/figures.h"

#include <cstdio>
#include <cstring>

namespace bench {

namespace {

enum class Bound { at_least, at_most };

// Applies to every figure whose name begins with `figure`; the part after the colon names what
// was measured.
struct Goal {
    const char *what;
    const char *figure;
    Bound bound;
    double value;
};

// A paragraph is smaller, but the kernel counts a process's pages in batches, so the peak of
// identical runs varies by about this much.
constexpr double memory_granularity = 256;

constexpr Goal goals[] = {
    {"module / floor, plain prose", "speed of floor, prose: ", Bound::at_least, 0.90},
    {"module / floor, 20 % attributed, per character",
     "speed of floor, attributed: ", Bound::at_least, 0.75},
    {"nothing registered / registered", "silent speed-up, prose: ", Bound::at_least, 1.5},
    {"host reads per 2048 bytes of plain prose", "reads per 2048, prose: ", Bound::at_most, 1.10},
    {"host reads of one resume, the most", "resume, host reads, most: ", Bound::at_most, 2},
    {"resume in the last quarter / in the first",
     "resume, last quarter / first quarter: ", Bound::at_most, 1.15},
    {"text in process / module", "text in process / module: ", Bound::at_least, 0.50},
    {"pfsdoc / catdoc, processor time, middle document",
     "pfsdoc / catdoc, middle document: ", Bound::at_most, 0.33},
    {"pfsdoc / wpd2text, processor time, middle document",
     "pfsdoc / wpd2text, middle document: ", Bound::at_most, 0.05},
    {"pfsdoc / catdoc, whole process, 2 KB letter",
     "letter, pfsdoc's processor time / that of: catdoc", Bound::at_most, 1.0},
    {"growth of pfsdoc / catdoc, middle / small", "growth against catdoc: ", Bound::at_most, 1.15},
    {"memory at 256 MB less that at 1 MB, in KB", "memory growth in KB: ", Bound::at_most,
     memory_granularity},
    {"allocations while reading", "allocations while reading: ", Bound::at_most, 0},
    {"time per byte, largest / smallest over sizes", "growth over sizes: ", Bound::at_most, 1.10},
};

bool is_reached(const Goal &goal, double value)
{
    return goal.bound == Bound::at_least ? value >= goal.value : value <= goal.value;
}

void print_line(const Goal &goal, const char *subject, const Spread &spread)
{
    std::printf("%-52s %-32s %8.3f [%.3f..%.3f] %s %-5g %s\n", goal.what, subject, spread.median,
                spread.lower, spread.upper, goal.bound == Bound::at_least ? ">=" : "<=", goal.value,
                is_reached(goal, spread.median) ? "reached" : "MISSED");
}

// True if it was not missed.
bool print_goal(const Goal &goal, const Figures &figures)
{
    bool measured = false;
    bool reached = true;
    for (const auto &[name, values] : figures.values()) {
        if (name.rfind(goal.figure, 0) == 0) {
            const Spread spread = spread_of(values);
            print_line(goal, name.c_str() + std::strlen(goal.figure), spread);
            measured = true;
            reached = reached && is_reached(goal, spread.median);
        }
    }
    if (!measured) {
        std::printf("%-52s not measured\n", goal.what);
    }
    return reached;
}

} // namespace

void Figures::print() const
{
    for (const auto &[name, values] : values_) {
        const Spread spread = spread_of(values);
        std::printf("%-60s %12.3f [%.3f..%.3f]\n", name.c_str(), spread.median, spread.lower,
                    spread.upper);
    }
}

bool print_goals(const Figures &figures)
{
    bool reached = true;
    for (const Goal &goal : goals) {
        reached = print_goal(goal, figures) && reached;
    }
    return reached;
}

} // namespace bench
