// The groups of measurements. Each registers its benchmarks; their results go into the
// figures.
//
// A benchmark's round measures things to be compared right after one another, and the
// benchmark library runs the rounds of all of them in random order. So ratios compare
// figures of the same moment, and other load on the machine affects all alike.
#pragma once

#include "bench/documents.h"
#include "bench/figures.h"
#include "bench/subject.h"

#include <cstddef>
#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace bench {

struct Settings {
    std::size_t megabytes = 64; // VS_PFS_BENCH_MB: the large documents
    int rounds = 9;             // VS_PFS_BENCH_ROUNDS
};
Settings settings();

inline constexpr std::size_t megabyte = std::size_t{1} << 20;

// One kind for each line reader; and Writing Assistant, which has its own decoder.
struct ReaderCase {
    const char *name;
    pfs_builder::Kind kind;
};
const std::vector<ReaderCase> &reader_cases();

// The large documents, each made once.
class Documents {
public:
    explicit Documents(std::size_t size) : size_(size) {}

    const std::string &get(pfs_builder::Kind kind, Text text)
    {
        std::string &document = documents_[{kind, text}];
        if (document.empty()) {
            document = make_document(kind, text, size_);
        }
        return document;
    }

private:
    std::size_t size_;
    std::map<std::pair<pfs_builder::Kind, Text>, std::string> documents_;
};

// What a benchmark needs; it must outlive the benchmark.
struct Scene {
    Settings settings;
    const Subject &subject;
    Documents &documents;
    Figures &figures;
};

// A round returns the seconds to be shown for it.
void register_rounds(const std::string &name, int rounds, const std::function<double()> &round);

// The readers compared with the floor (reader_benchmarks.cpp), and at sizes from 1/64 to four
// times the configured size (size_benchmarks.cpp).
void register_reader_benchmarks(const Scene &scene);
void register_size_benchmarks(const Scene &scene);
// Opening, and whole letters (letter_benchmarks.cpp).
void register_letter_benchmarks(const Scene &scene);
// Resuming at saved positions (resume_benchmarks.cpp).
void register_resume_benchmarks(const Scene &scene);
// Text by the library, in process (host_benchmarks.cpp).
void register_host_benchmarks(const Scene &scene);
// Text by the command, compared with other commands (command_benchmarks.cpp).
void register_command_benchmarks(const Scene &scene);

} // namespace bench
