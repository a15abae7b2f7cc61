// How the time per byte grows with the document: it should not.
#include "bench/benchmarks.h"

#include <algorithm>
#include <array>
#include <memory>

namespace bench {

namespace {

// In sixty-fourths of the configured size: 1, 4, 16, 64 and 256 MB by default.
constexpr std::array<std::size_t, 5> shares = {1, 4, 16, 64, 256};
constexpr std::size_t whole_share = 64;
// A short document is read repeatedly until this much has been read.
constexpr std::size_t least_share = 16;

class SizeBenchmark {
public:
    SizeBenchmark(const Scene &scene, const ReaderCase &reader)
        : scene_(scene), reader_(reader), maker_(reader.kind, Text::prose)
    {
    }

    double measure()
    {
        double seconds = 0;
        for (std::size_t i = 0; i < shares.size(); ++i) {
            const std::size_t size = share_size(shares[i]);
            const std::string document = maker_.make(size);
            AppendingHost host(document.size());
            const std::size_t times = std::max<std::size_t>(1, least_share / shares[i]);
            double taken = 0;
            for (std::size_t time = 0; time < times; ++time) {
                taken += measure_module(scene_.subject, document, host).seconds;
            }
            note(i, taken * 1e9 / static_cast<double>(document.size() * times));
            seconds += taken;
        }
        note_growth();
        return seconds;
    }

private:
    std::size_t share_size(std::size_t share) const
    {
        return scene_.settings.megabytes * megabyte / whole_share * share;
    }

    void note(std::size_t index, double nanoseconds)
    {
        nanoseconds_[index].push_back(nanoseconds);
        const std::size_t kilobytes = share_size(shares[index]) / 1024;
        scene_.figures.add("ns per byte at " + std::to_string(kilobytes) + " KB: " + reader_.name,
                           nanoseconds);
    }

    void note_growth()
    {
        std::array<double, shares.size()> medians{};
        std::transform(nanoseconds_.begin(), nanoseconds_.end(), medians.begin(), median);
        scene_.figures.set(std::string("growth over sizes: ") + reader_.name,
                           *std::max_element(medians.begin(), medians.end()) /
                               *std::min_element(medians.begin(), medians.end()));
    }

    const Scene &scene_;
    const ReaderCase &reader_;
    DocumentMaker maker_;
    std::array<std::vector<double>, shares.size()> nanoseconds_;
};

} // namespace

void register_size_benchmarks(const Scene &scene)
{
    for (const ReaderCase &reader : reader_cases()) {
        const auto one = std::make_shared<SizeBenchmark>(scene, reader);
        register_rounds(std::string(reader.name) + "/sizes", (scene.settings.rounds + 1) / 2,
                        [one] { return one->measure(); });
    }
}

} // namespace bench
