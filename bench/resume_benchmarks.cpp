// Resuming: state and position are saved at every paragraph break of a large document; then
// random ones are restored, and one paragraph is read from each. In four groups by position,
// since the cost must not depend on it.
#include "bench/benchmarks.h"

#include <algorithm>
#include <array>
#include <memory>
#include <random>

namespace bench {

namespace {

constexpr std::size_t resumes_a_round = 10'000;
constexpr std::size_t groups = 4;

struct Checkpoint {
    std::array<uint8_t, VW_SAVED_STATE_SIZE> state;
    uint32_t position;
};

class ResumeBenchmark {
public:
    ResumeBenchmark(const Scene &scene, const ReaderCase &reader)
        : scene_(scene), reader_(reader), document_(scene.documents.get(reader.kind, Text::prose)),
          host_(document_.size()), file_(document_),
          reading_(scene.subject.entries(), file_, &host_)
    {
        host_.register_with(reading_);
        reading_.open();
        save_places();
    }

    double measure()
    {
        std::array<double, groups> seconds{};
        const uint64_t reads = file_.reads;
        // The groups alternate, so that other load on the machine affects all of them.
        for (std::size_t i = 0; i < resumes_a_round; i += batch) {
            const std::size_t group = i / batch % groups;
            seconds[group] += resume_some(group);
        }
        const double all = seconds[0] + seconds[1] + seconds[2] + seconds[3];
        add("resume, ns", all * 1e9 / resumes_a_round);
        add("resume, host reads, mean", static_cast<double>(file_.reads - reads) / resumes_a_round);
        scene_.figures.set(std::string("resume, host reads, most: ") + reader_.name,
                           static_cast<double>(most_reads_));
        add("resume, last quarter / first quarter", seconds[groups - 1] / seconds[0]);
        return all;
    }

private:
    static constexpr std::size_t batch = 125;

    void save_places()
    {
        host_.stops_at_paragraphs = true;
        while (!host_.ended) {
            Checkpoint checkpoint{};
            reading_.entries.get_data(checkpoint.state.data(), reading_.instance);
            reading_.entries.stream_tell(reading_.stream, &checkpoint.position);
            checkpoints_.push_back(checkpoint);
            reading_.entries.stream_read(reading_.stream, reading_.instance);
        }
    }

    double resume_some(std::size_t group)
    {
        const std::size_t group_size = checkpoints_.size() / groups;
        std::array<const Checkpoint *, batch> chosen;
        std::generate(chosen.begin(), chosen.end(),
                      [&] { return &checkpoints_[group * group_size + random_() % group_size]; });
        const double begin = thread_seconds();
        for (const Checkpoint *checkpoint : chosen) {
            const uint64_t reads = file_.reads;
            host_.rewind();
            reading_.entries.set_data(checkpoint->state.data(), reading_.instance);
            reading_.entries.stream_seek(reading_.stream, &checkpoint->position);
            reading_.entries.stream_read(reading_.stream, reading_.instance);
            most_reads_ = std::max(most_reads_, file_.reads - reads);
        }
        return thread_seconds() - begin;
    }

    void add(const char *what, double value)
    {
        scene_.figures.add(std::string(what) + ": " + reader_.name, value);
    }

    const Scene &scene_;
    const ReaderCase &reader_;
    const std::string &document_;
    AppendingHost host_;
    MemoryFile file_;
    Reading reading_;
    std::vector<Checkpoint> checkpoints_;
    std::minstd_rand random_{1995};
    uint64_t most_reads_ = 0;
};

} // namespace

void register_resume_benchmarks(const Scene &scene)
{
    for (const ReaderCase &reader : reader_cases()) {
        const auto one = std::make_shared<ResumeBenchmark>(scene, reader);
        register_rounds(std::string(reader.name) + "/resume", scene.settings.rounds,
                        [one] { return one->measure(); });
    }
}

} // namespace bench
