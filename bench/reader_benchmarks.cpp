// The module compared with the floor, for each line reader and each sort of text: with the same
// routine, and with a host that registers nothing.
#include "bench/benchmarks.h"

#include <memory>

namespace bench {

namespace {

class ReaderBenchmark {
public:
    ReaderBenchmark(const Scene &scene, const ReaderCase &reader, Text text)
        : scene_(scene), reader_(reader), text_(text),
          document_(scene.documents.get(reader.kind, text))
    {
    }

    // The module's seconds. Each round begins with a different one of the three.
    double measure()
    {
        AppendingHost host(document_.size());
        Measured floor;
        Measured module;
        Measured silent;
        for (int i = 0; i < 3; ++i) {
            switch ((i + round_) % 3) {
            case 0: floor = measure_floor(scene_.subject, document_, host); break;
            case 1: module = measure_module(scene_.subject, document_, host); break;
            default: silent = measure_silent(scene_.subject, document_); break;
            }
        }
        ++round_;
        note(floor, module, silent);
        return module.seconds;
    }

private:
    void note(const Measured &floor, const Measured &module, const Measured &silent)
    {
        const auto size = static_cast<double>(document_.size());
        const double per_call =
            static_cast<double>(module.characters) / static_cast<double>(floor.characters);
        // Where characters have attribute bytes, per reported character.
        const bool by_characters = text_ == Text::attributed;
        add("speed of floor", floor.seconds / module.seconds * (by_characters ? per_call : 1.0));
        add("silent speed-up", module.seconds / silent.seconds);
        add("reads per 2048",
            static_cast<double>(module.host_reads) * VW_STREAM_BUFFER_SIZE / size);
        scene_.figures.add(std::string("allocations while reading: ") + reader_.name,
                           static_cast<double>(module.allocations + silent.allocations));
        add("ns per byte, floor", floor.seconds * 1e9 / size);
        add("ns per byte, module", module.seconds * 1e9 / size);
        add("ns per byte, silent", silent.seconds * 1e9 / size);
    }

    void add(const char *what, double value)
    {
        scene_.figures.add(std::string(what) + ", " + text_name(text_) + ": " + reader_.name,
                           value);
    }

    const Scene &scene_;
    const ReaderCase &reader_;
    Text text_;
    const std::string &document_;
    int round_ = 0;
};

} // namespace

void register_reader_benchmarks(const Scene &scene)
{
    for (const ReaderCase &reader : reader_cases()) {
        for (const Text text : texts) {
            const auto one = std::make_shared<ReaderBenchmark>(scene, reader, text);
            register_rounds(std::string(reader.name) + "/" + text_name(text), scene.settings.rounds,
                            [one] { return one->measure(); });
        }
    }
}

} // namespace bench
