// model_compare DOCUMENTS SEED: compares module and model over that many generated documents.
// Documents are numbered from SEED on, so disjoint ranges can be run in parallel, and a single
// document by its number.
#include "tests/model/trials.h"

#include <chrono>
#include <cstdlib>
#include <iostream>

namespace {

using namespace tests::model;

constexpr uint64_t most_failures = 5;

void report_progress(uint64_t done, uint64_t failures, std::chrono::steady_clock::time_point start)
{
    const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
    std::cout << done << " documents, " << failures << " differences, "
              << static_cast<uint64_t>(taken.count()) << " s" << std::endl;
}

// The number of documents that show a difference.
uint64_t compare_all(uint64_t documents, uint64_t seed)
{
    constexpr uint64_t progress_every = 100'000;
    const auto start = std::chrono::steady_clock::now();
    uint64_t failures = 0;
    for (uint64_t i = 0; i < documents && failures < most_failures; ++i) {
        const Kind kind = all_kinds[i % all_kinds.size()];
        if (const auto failure = failure_of(kind, seed + i / all_kinds.size())) {
            ++failures;
            std::cout << *failure << std::endl;
        }
        if ((i + 1) % progress_every == 0 || i + 1 == documents) {
            report_progress(i + 1, failures, start);
        }
    }
    return failures;
}

} // namespace

int main(int argc, char **argv)
{
    if (argc != 3) {
        std::cerr << "usage: model_compare DOCUMENTS SEED\n";
        return 2;
    }
    const uint64_t documents = std::strtoull(argv[1], nullptr, 0);
    const uint64_t seed = std::strtoull(argv[2], nullptr, 0);
    std::cout << documents << " documents of all kinds, numbered from " << seed << std::endl;
    return compare_all(documents, seed) == 0 ? 0 : 1;
}
