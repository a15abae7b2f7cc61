// How the cost of hostile bodies grows with their size: growth [ROUNDS] [MEGABYTES]
//
// Reads each body at 1, 4 and 16 MB (or in thirds of another size's powers) through the
// module, into a counting host, right after plain prose of the same kind and size, and prints
// nanoseconds of this thread per byte: medians of several rounds, in each of which everything is
// read once. Two goals: a body costs at most twice as much per byte at one size as at another,
// and at most five times as much as prose.
//
// Then the same without the lookahead's memory: a host makes the instance forget it at each
// character, so every line end scans again. There the cost per byte doubles with the size, as do
// the bytes read from the host per byte of the document.
//
// The exit code is 1 if a goal was missed, or if the two ways reported different texts.
#include "bench/documents.h"
#include "bench/hostile_bodies.h"
#include "bench/reading.h"
#include "bench/statistics.h"
#include "vs_pfs/filter_interface.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <map>

namespace bench {

namespace {

constexpr double most_growth = 2.0;
constexpr double most_over_prose = 5.0;
constexpr std::size_t default_rounds = 5;
constexpr std::size_t kilobyte = 1024;
constexpr std::size_t default_largest = 16 * kilobyte * kilobyte;
constexpr std::size_t sizes = 3;
constexpr std::size_t size_step = 4;
constexpr std::array<std::size_t, 4> forgetful_sizes = {16 * kilobyte, 32 * kilobyte, 64 * kilobyte,
                                                        128 * kilobyte};
constexpr std::size_t forgetful_margins = 1; // of hostile_margins()

enum class Memory { kept, forgotten };

struct Counts {
    VwInstance *instance = nullptr;
    uint64_t characters = 0;
    uint64_t breaks = 0;
};

int32_t count_character(int32_t, uint32_t low, uint32_t high)
{
    ++user_of<Counts>(low, high)->characters;
    return 0;
}

int32_t count_and_forget(int32_t, uint32_t low, uint32_t high)
{
    Counts &counts = *user_of<Counts>(low, high);
    ++counts.characters;
    counts.instance->lookahead.stream = nullptr;
    return 0;
}

int32_t forget_at_spacing(int32_t, int32_t, int32_t, int32_t, uint32_t low, uint32_t high)
{
    user_of<Counts>(low, high)->instance->lookahead.stream = nullptr;
    return 0;
}

int32_t count_break(int32_t, int32_t, uint32_t low, uint32_t high)
{
    ++user_of<Counts>(low, high)->breaks;
    return 0;
}

struct Cost {
    double nanoseconds; // per byte of the document
    double bytes_read;  // from the host, per byte of the document
    uint64_t characters;
    uint64_t breaks;
};

Cost cost_of(const pfsdoc::ModuleEntries &entries, const std::string &document, Memory memory)
{
    MemoryFile file(document);
    Counts counts;
    Reading reading(entries, file, &counts);
    counts.instance = reading.instance;
    reading.on(VW_SO_BREAK, count_break);
    if (memory == Memory::forgotten) {
        // In every line one of the two comes before the line end is classified.
        reading.on(VW_SO_CHARACTER, count_and_forget);
        reading.on(VW_SO_LINE_SPACING, forget_at_spacing);
    } else {
        reading.on(VW_SO_CHARACTER, count_character);
    }
    reading.open();
    const uint64_t read_before = file.bytes_read;
    const double begin = thread_seconds();
    entries.stream_read(reading.stream, reading.instance);
    const double seconds = thread_seconds() - begin;
    const auto size = static_cast<double>(document.size());
    return {seconds * 1e9 / size, static_cast<double>(file.bytes_read - read_before) / size,
            counts.characters, counts.breaks};
}

// The measurements of one body with one pair of margins, by size.
struct Row {
    const HostileBody *body;
    const StoredMargins *margins;
    std::array<std::vector<double>, sizes> nanoseconds;
    std::array<std::vector<double>, sizes> over_prose;
    double bytes_read = 0;

    double growth() const
    {
        std::array<double, sizes> medians;
        std::transform(nanoseconds.begin(), nanoseconds.end(), medians.begin(), median);
        return *std::max_element(medians.begin(), medians.end()) /
               *std::min_element(medians.begin(), medians.end());
    }
    double worst_over_prose() const
    {
        double worst = 0;
        for (const std::vector<double> &ratios : over_prose) {
            worst = std::max(worst, median(ratios));
        }
        return worst;
    }
    bool missed() const
    {
        return growth() > most_growth || worst_over_prose() > most_over_prose;
    }
};

class Growth {
public:
    Growth(const pfsdoc::ModuleEntries &entries, std::size_t largest) : entries_(entries)
    {
        for (std::size_t i = sizes; i-- > 0; largest /= size_step) {
            sizes_[i] = largest;
        }
        for (const HostileBody &body : hostile_bodies()) {
            for (const StoredMargins &margins : hostile_margins()) {
                rows_.push_back({&body, &margins, {}, {}});
            }
            make_prose(body.kind);
        }
    }

    void measure_round()
    {
        for (Row &row : rows_) {
            for (std::size_t i = 0; i < sizes; ++i) {
                measure(row, i);
            }
        }
    }

    // True if all goals were reached.
    bool print() const
    {
        print_head();
        for (const Row &row : rows_) {
            print_row(row);
        }
        const auto missed =
            std::count_if(rows_.begin(), rows_.end(), [](const Row &row) { return row.missed(); });
        std::printf("\n%zu bodies, %td of them beyond a goal\n", rows_.size(), missed);
        return missed == 0;
    }

private:
    void make_prose(pfs_builder::Kind kind)
    {
        auto &documents = prose_[kind];
        for (std::size_t i = 0; i < sizes && documents.size() < sizes; ++i) {
            documents.push_back(make_document(kind, Text::prose, sizes_[i]));
        }
    }

    void measure(Row &row, std::size_t size)
    {
        const std::string document = hostile_document(*row.body, *row.margins, sizes_[size]);
        const Cost prose = cost_of(entries_, prose_[row.body->kind][size], Memory::kept);
        const Cost cost = cost_of(entries_, document, Memory::kept);
        row.nanoseconds[size].push_back(cost.nanoseconds);
        row.over_prose[size].push_back(cost.nanoseconds / prose.nanoseconds);
        prose_cost_[row.body->kind].push_back(prose.nanoseconds);
        row.bytes_read = cost.bytes_read;
    }

    void print_head() const
    {
        for (const auto &[kind, costs] : prose_cost_) {
            std::printf("plain prose, %s: %.2f ns a byte\n", pfs_builder::kind_name(kind),
                        median(costs));
        }
        std::printf("\n%-22s %-20s %-11s", "kind", "body", "margins");
        for (const std::size_t size : sizes_) {
            std::printf(" %6.4g MB", static_cast<double>(size) / (kilobyte * kilobyte));
        }
        std::printf("  growth  of prose  bytes read\n");
        std::printf("%-22s %-20s %-11s %27s %7s %9s\n", "", "", "", "ns a byte", "<= 2", "<= 5");
    }

    static void print_row(const Row &row)
    {
        std::printf("%-22s %-20s %-11s", pfs_builder::kind_name(row.body->kind), row.body->name,
                    row.margins->name);
        for (const std::vector<double> &values : row.nanoseconds) {
            std::printf(" %9.2f", median(values));
        }
        std::printf(" %7.2f %9.2f %11.2f%s\n", row.growth(), row.worst_over_prose(), row.bytes_read,
                    row.missed() ? "  MISSED" : "");
    }

    const pfsdoc::ModuleEntries &entries_;
    std::array<std::size_t, sizes> sizes_{};
    std::map<pfs_builder::Kind, std::vector<std::string>> prose_; // by size
    std::map<pfs_builder::Kind, std::vector<double>> prose_cost_;
    std::vector<Row> rows_;
};

void print_forgetful_cost(const HostileBody &body, const char *memory,
                          const std::vector<Cost> &costs)
{
    std::printf("%-22s %-20s %-9s", pfs_builder::kind_name(body.kind), body.name, memory);
    for (const Cost &cost : costs) {
        std::printf(" %9.1f", cost.nanoseconds);
    }
    std::printf(" %11.1f\n", costs.back().bytes_read);
}

// True if the same was reported with and without the memory.
bool compare_memories(const pfsdoc::ModuleEntries &entries, const HostileBody &body)
{
    std::vector<Cost> forgotten;
    std::vector<Cost> kept;
    bool same = true;
    for (const std::size_t size : forgetful_sizes) {
        const std::string document =
            hostile_document(body, hostile_margins()[forgetful_margins], size);
        forgotten.push_back(cost_of(entries, document, Memory::forgotten));
        kept.push_back(cost_of(entries, document, Memory::kept));
        same = same && forgotten.back().characters == kept.back().characters &&
               forgotten.back().breaks == kept.back().breaks;
    }
    print_forgetful_cost(body, "forgotten", forgotten);
    print_forgetful_cost(body, same ? "kept" : "DIFFERS", kept);
    return same;
}

bool compare_memories(const pfsdoc::ModuleEntries &entries)
{
    std::printf("\nWithout the lookahead's memory and with it, margins %s, ns a byte:\n\n",
                hostile_margins()[forgetful_margins].name);
    std::printf("%-22s %-20s %-9s", "kind", "body", "memory");
    for (const std::size_t size : forgetful_sizes) {
        std::printf(" %6zu KB", size / kilobyte);
    }
    std::printf("  bytes read\n");
    bool same = true;
    for (const HostileBody &body : hostile_bodies()) {
        same = (!body.endless || compare_memories(entries, body)) && same;
    }
    return same;
}

std::size_t number(int count, char **arguments, int index, std::size_t otherwise)
{
    return index < count ? std::strtoul(arguments[index], nullptr, 10) : otherwise;
}

int run(int count, char **arguments)
{
    const std::size_t rounds = number(count, arguments, 1, default_rounds);
    const std::size_t megabytes =
        number(count, arguments, 2, default_largest / kilobyte / kilobyte);
    if (rounds == 0 || megabytes == 0) {
        static_cast<void>(std::fprintf(stderr, "usage: growth [ROUNDS] [MEGABYTES]\n"));
        return 2;
    }
    const pfsdoc::Result<pfsdoc::Module> module = pfsdoc::Module::linked();
    Growth growth(module.value().entries(), megabytes * kilobyte * kilobyte);
    for (std::size_t round = 0; round < rounds; ++round) {
        growth.measure_round();
    }
    std::printf("Medians of %zu rounds.\n", rounds);
    const bool reached = growth.print();
    const bool same = compare_memories(module.value().entries());
    return reached && same ? 0 : 1;
}

} // namespace

} // namespace bench

int main(int count, char **arguments)
{
    return bench::run(count, arguments);
}
