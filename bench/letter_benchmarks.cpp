// Small documents: opening one of each kind, and reading a whole letter, including everything
// that a program does for it, from VwAllocProc to VwFreeProc.
#include "bench/benchmarks.h"

#include "bench/allocation_count.h"

#include <memory>

namespace bench {

namespace {

constexpr int letters_a_round = 2000;

enum class Extent { open_only, whole };

class LetterBenchmark {
public:
    LetterBenchmark(const Scene &scene, const pfs_builder::KindName &kind, Extent extent)
        : scene_(scene), kind_(kind), extent_(extent), letter_(make_letter(kind.kind))
    {
    }

    double measure()
    {
        AppendingHost host(letter_.size());
        const uint64_t allocations = allocation_count();
        const double begin = thread_seconds();
        for (int i = 0; i < letters_a_round; ++i) {
            read(host);
        }
        const double seconds = thread_seconds() - begin;
        const uint64_t allocated = allocation_count() - allocations;
        add("documents a second", letters_a_round / seconds);
        add("allocations per document", static_cast<double>(allocated) / letters_a_round);
        return seconds;
    }

private:
    void read(AppendingHost &host) const
    {
        MemoryFile file(letter_);
        Reading reading(scene_.subject.entries(), file, &host);
        host.register_with(reading);
        reading.open();
        if (extent_ == Extent::whole) {
            host.rewind();
            reading.entries.stream_section(reading.stream, reading.instance);
            reading.entries.stream_read(reading.stream, reading.instance);
        }
    }

    void add(const char *what, double value)
    {
        scene_.figures.add(std::string(what) +
                               (extent_ == Extent::whole ? ", 2 KB letter: " : ", open: ") +
                               kind_.name,
                           value);
    }

    const Scene &scene_;
    const pfs_builder::KindName &kind_;
    Extent extent_;
    std::string letter_;
};

} // namespace

void register_letter_benchmarks(const Scene &scene)
{
    for (const pfs_builder::KindName &kind : pfs_builder::kind_names) {
        for (const Extent extent : {Extent::open_only, Extent::whole}) {
            const auto one = std::make_shared<LetterBenchmark>(scene, kind, extent);
            register_rounds(std::string(kind.name) +
                                (extent == Extent::whole ? "/letter" : "/open"),
                            scene.settings.rounds, [one] { return one->measure(); });
        }
    }
}

} // namespace bench
