// The library in process: the text of a large document, discarded, compared with the module
// alone and with copying the document's bytes.
#include "bench/benchmarks.h"

#include "lib/reading/read_document.h"
#include "lib/writers/text_writer.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>

namespace bench {

namespace {

class ViewSource final : public pfsdoc::ByteSource {
public:
    explicit ViewSource(std::string_view bytes) : bytes_(bytes) {}

    std::optional<uint32_t> read_at(uint32_t position, std::span<uint8_t> destination) override
    {
        const std::size_t begin = std::min<std::size_t>(position, bytes_.size());
        const std::size_t count = std::min(destination.size(), bytes_.size() - begin);
        std::memcpy(destination.data(), bytes_.data() + begin, count);
        return static_cast<uint32_t>(count);
    }
    uint32_t size() const override
    {
        return static_cast<uint32_t>(bytes_.size());
    }

private:
    std::string_view bytes_;
};

class NoOutput final : public pfsdoc::Output {
public:
    void write(std::string_view bytes) override
    {
        written += bytes.size();
    }
    std::size_t written = 0;
};

class HostBenchmark {
public:
    HostBenchmark(const Scene &scene, const ReaderCase &reader)
        : scene_(scene), reader_(reader), document_(scene.documents.get(reader.kind, Text::prose))
    {
    }

    double measure()
    {
        AppendingHost host(document_.size());
        const double module = measure_module(scene_.subject, document_, host).seconds;
        const double text = measure_text();
        const double copy = measure_copy();
        const double megabytes = static_cast<double>(document_.size()) / 1e6;
        add("text in process / module", module / text);
        add("text in process, MB/s", megabytes / text);
        add("copy, MB/s", megabytes / copy);
        return text;
    }

private:
    double measure_text() const
    {
        ViewSource source(document_);
        NoOutput output;
        const double begin = thread_seconds();
        const pfsdoc::Result<pfsdoc::batch::Identity> identity = pfsdoc::identify(source);
        pfsdoc::writers::TextWriter writer(output);
        const pfsdoc::Status fault = pfsdoc::reading::read_document(
            scene_.subject.module(), source, identity.value().kind, writer,
            {pfsdoc::reading::Offsets::none, pfsdoc::reading::Stops::for_margins});
        writer.finish();
        const double seconds = thread_seconds() - begin;
        if (!fault.ok() || output.written < document_.size() / 2) {
            static_cast<void>(std::fprintf(stderr, "bench: the host did not write the text\n"));
            std::exit(EXIT_FAILURE);
        }
        return seconds;
    }

    double measure_copy() const
    {
        std::string copy(document_.size(), '\0');
        const double begin = thread_seconds();
        std::memcpy(copy.data(), document_.data(), document_.size());
        const double seconds = thread_seconds() - begin;
        return copy == document_ ? seconds : 0;
    }

    void add(const char *what, double value)
    {
        scene_.figures.add(std::string(what) + ": " + reader_.name, value);
    }

    const Scene &scene_;
    const ReaderCase &reader_;
    const std::string &document_;
};

} // namespace

void register_host_benchmarks(const Scene &scene)
{
    for (const ReaderCase &reader : reader_cases()) {
        const auto one = std::make_shared<HostBenchmark>(scene, reader);
        register_rounds(std::string(reader.name) + "/text in process", scene.settings.rounds,
                        [one] { return one->measure(); });
    }
}

} // namespace bench
