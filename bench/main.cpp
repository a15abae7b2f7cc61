// The benchmark: measures everything in one interleaved run, then prints every figure and
// the goals. VS_PFS_BENCH_MB sets the size of the large documents, VS_PFS_BENCH_ROUNDS how often
// everything is measured; the benchmark library's own options work as well.
// The exit code is 1 if a goal was missed.
#include "bench/benchmarks.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>

namespace bench {

namespace {

// One line for each benchmark: its median round.
class MedianReporter : public benchmark::ConsoleReporter {
public:
    MedianReporter() : ConsoleReporter(OO_None) {}

    void ReportRuns(const std::vector<Run> &runs) override
    {
        std::vector<double> seconds;
        for (const Run &run : runs) {
            if (run.run_type == Run::RT_Iteration) {
                seconds.push_back(run.real_accumulated_time);
            }
        }
        if (!seconds.empty()) {
            std::printf("%-50s %10.1f ms\n", runs.front().run_name.function_name.c_str(),
                        median(seconds) * 1e3);
            static_cast<void>(std::fflush(stdout));
        }
    }
};

constexpr long most_setting = 1000; // documents of 4 GB cannot be read: positions have 32 bits

int setting(const char *name, int otherwise)
{
    const char *value = std::getenv(name);
    const long number = value == nullptr ? otherwise : std::strtol(value, nullptr, 10);
    return number > 0 && number <= most_setting ? static_cast<int>(number) : otherwise;
}

int run(int count, char **arguments)
{
    char interleaving[] = "--benchmark_enable_random_interleaving=true";
    std::vector<char *> all = {arguments[0], interleaving};
    all.insert(all.end(), arguments + 1, arguments + count);
    int all_count = static_cast<int>(all.size());
    all.push_back(nullptr);
    benchmark::Initialize(&all_count, all.data());
    if (benchmark::ReportUnrecognizedArguments(all_count, all.data())) {
        return 2;
    }
    const Settings chosen = settings();
    const Subject subject;
    Figures figures;
    Documents documents(chosen.megabytes * megabyte);
    const Scene scene = {chosen, subject, documents, figures};
    register_reader_benchmarks(scene);
    register_size_benchmarks(scene);
    register_letter_benchmarks(scene);
    register_resume_benchmarks(scene);
    register_host_benchmarks(scene);
    register_command_benchmarks(scene);
    MedianReporter reporter;
    std::printf("Rounds of what is measured:\n\n");
    benchmark::RunSpecifiedBenchmarks(&reporter);
    std::printf("\nMedians and quarters of %d rounds, documents of %zu MB\n\n", chosen.rounds,
                chosen.megabytes);
    figures.print();
    std::printf("\n");
    const bool reached = print_goals(figures);
    benchmark::ClearRegisteredBenchmarks(); // before the objects that they refer to are gone
    benchmark::Shutdown();
    return reached ? 0 : 1;
}

} // namespace

void register_rounds(const std::string &name, int rounds, const std::function<double()> &round)
{
    benchmark::RegisterBenchmark(name.c_str(),
                                 [round](benchmark::State &state) {
                                     for (auto unused : state) {
                                         static_cast<void>(unused);
                                         state.SetIterationTime(round());
                                     }
                                 })
        ->Iterations(1)
        ->Repetitions(rounds)
        ->UseManualTime()
        ->Unit(benchmark::kMillisecond);
}

Settings settings()
{
    Settings chosen;
    chosen.megabytes =
        static_cast<std::size_t>(setting("VS_PFS_BENCH_MB", static_cast<int>(chosen.megabytes)));
    chosen.rounds = setting("VS_PFS_BENCH_ROUNDS", chosen.rounds);
    return chosen;
}

} // namespace bench

int main(int count, char **arguments)
{
    return bench::run(count, arguments);
}
