// The processor time of the command pfsdoc as a whole process, compared with commands that do
// the same for the same prose in their own formats; and the memory that it needs, and that the
// module alone needs in the C example.
#include "bench/benchmarks.h"

#include "bench/commands.h"
#include "bench/other_formats.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <memory>

namespace bench {

namespace {

constexpr int letters_a_round = 20;
// Commands take long, and their figures vary little.
constexpr int rounds_divisor = 3;

Command pfsdoc_text(const std::string &file)
{
    return {program_directory() + "pfsdoc", "text", file};
}

// In sixty-fourths of the configured size: 1, 20 and 64 MB by default.
struct DocumentSize {
    const char *name;
    std::size_t share;
    int times; // so that a run is not too short to be measured
};
constexpr DocumentSize small_size = {"small", 1, 5};
constexpr DocumentSize middle_size = {"middle", 20, 1};
constexpr DocumentSize large_size = {"large", 64, 1};
constexpr std::size_t whole_share = 64;

std::size_t bytes_of(const Settings &settings, std::size_t share)
{
    return settings.megabytes * megabyte / whole_share * share;
}

// Another command, by the extension of the file it reads.
struct Other {
    const char *name;
    const char *extension;
    std::string (*convert)(const Paragraphs &paragraphs);
    bool is_compared; // reads a word processor's documents, as pfsdoc does
    std::size_t most_bytes = std::string::npos;
};
constexpr Other others[] = {
    {"catdoc", ".rtf", rich_text, true},
    {"wpd2text", ".wpd", word_perfect, true},
    {"antiword", ".doc", word_for_dos, true, word_for_dos_limit},
    {"cmark", ".md", markdown, false},
    {"cat", ".md", markdown, false},
};

class ProseBenchmark {
public:
    ProseBenchmark(const Scene &scene, const TemporaryDirectory &directory, DocumentSize size)
        : scene_(scene), size_(size)
    {
        const std::size_t bytes = bytes_of(scene.settings, size.share);
        for (const ReaderCase &reader : reader_cases()) {
            const std::string file =
                directory.write(std::string(size.name) + reader.name,
                                make_document(reader.kind, Text::prose, bytes));
            ours_.push_back({reader.name, pfsdoc_text(file)});
        }
        const Paragraphs paragraphs = make_plain_prose(bytes);
        for (const Other &other : others) {
            if (is_installed(other.name) && bytes < other.most_bytes) {
                const std::string file = directory.write(std::string(size.name) + other.extension,
                                                         other.convert(paragraphs));
                others_.push_back({&other, {other.name, file}});
            }
        }
    }

    double measure()
    {
        std::map<std::string, double> compared;
        for (const auto &[other, command] : others_) {
            const double seconds = measure(other->name, command);
            if (other->is_compared) {
                compared[other->name] = seconds;
            }
        }
        double all = 0;
        for (const auto &[name, command] : ours_) {
            const double seconds = measure(name, command);
            all += seconds;
            for (const auto &[other, other_seconds] : compared) {
                add("pfsdoc / " + other, name, seconds / other_seconds);
            }
        }
        return all;
    }

private:
    double measure(const std::string &name, const Command &command)
    {
        const double seconds = cost_of_command(command, size_.times).processor_seconds;
        const auto bytes = static_cast<double>(bytes_of(scene_.settings, size_.share));
        add("command, MB/s", name, bytes / 1e6 / seconds);
        return seconds;
    }

    void add(const std::string &what, const std::string &name, double value)
    {
        scene_.figures.add(what + ", " + size_.name + " document: " + name, value);
    }

    const Scene &scene_;
    DocumentSize size_;
    std::vector<std::pair<std::string, Command>> ours_;
    std::vector<std::pair<const Other *, Command>> others_;
};

// All sizes in one round, for the ratio of the middle one to the small one.
class GrowthBenchmark {
public:
    explicit GrowthBenchmark(const Scene &scene)
        : scene_(scene), small_(scene, directory_, small_size),
          middle_(scene, directory_, middle_size), large_(scene, directory_, large_size)
    {
    }

    double measure()
    {
        const double seconds = small_.measure() + middle_.measure() + large_.measure();
        for (const ReaderCase &reader : reader_cases()) {
            note_growth(reader.name);
        }
        return seconds;
    }

private:
    void note_growth(const std::string &name)
    {
        const auto &values = scene_.figures.values();
        const auto small = values.find("pfsdoc / catdoc, small document: " + name);
        const auto middle = values.find("pfsdoc / catdoc, middle document: " + name);
        if (small != values.end() && middle != values.end()) {
            scene_.figures.set("growth against catdoc: " + name,
                               median(middle->second) / median(small->second));
        }
    }

    const Scene &scene_;
    TemporaryDirectory directory_;
    ProseBenchmark small_;
    ProseBenchmark middle_;
    ProseBenchmark large_;
};

// A whole process for a letter of 2 KB.
class LetterCommandBenchmark {
public:
    explicit LetterCommandBenchmark(const Scene &scene) : scene_(scene)
    {
        const std::string letter = make_letter(pfs_builder::Kind::first_choice_3);
        commands_.push_back({"pfsdoc", pfsdoc_text(directory_.write("letter", letter))});
        commands_.push_back({"true", {"/bin/true"}});
        const Paragraphs paragraphs = make_plain_prose(letter.size());
        for (const Other &other : others) {
            if (other.is_compared && is_installed(other.name)) {
                const std::string file = directory_.write(std::string("letter") + other.extension,
                                                          other.convert(paragraphs));
                commands_.push_back({other.name, {other.name, file}});
            }
        }
    }

    double measure()
    {
        std::map<std::string, CommandCost> costs;
        for (const auto &[name, command] : commands_) {
            const CommandCost cost = cost_of_command(command, letters_a_round);
            costs[name] = cost;
            scene_.figures.add("letter, ms of processor: " + name, cost.processor_seconds * 1e3);
            scene_.figures.add("letter, ms on the clock: " + name, cost.clock_seconds * 1e3);
        }
        const CommandCost ours = costs["pfsdoc"];
        costs.erase("pfsdoc");
        for (const auto &[name, cost] : costs) {
            scene_.figures.add("letter, pfsdoc's processor time / that of: " + name,
                               ours.processor_seconds / cost.processor_seconds);
        }
        return ours.processor_seconds;
    }

private:
    const Scene &scene_;
    TemporaryDirectory directory_;
    std::vector<std::pair<std::string, Command>> commands_;
};

// Peak memory of pfsdoc, and of the module in a host that stores nothing.
class MemoryBenchmark {
public:
    MemoryBenchmark(const Scene &scene, const ReaderCase &reader) : scene_(scene), reader_(reader)
    {
        const DocumentMaker maker(reader.kind, Text::prose);
        for (const std::size_t share : shares) {
            files_.push_back(directory_.write(std::to_string(share),
                                              maker.make(bytes_of(scene.settings, share))));
        }
    }

    double measure()
    {
        return measure("pfsdoc text", [](const std::string &file) { return pfsdoc_text(file); }) +
               measure("module", [](const std::string &file) {
                   return Command{program_directory() + "read_text", file};
               });
    }

private:
    // 1, 16 and 256 MB by default.
    static constexpr std::array<std::size_t, 3> shares = {1, 16, 256};

    template <typename MakeCommand>
    double measure(const std::string &what, MakeCommand make_command)
    {
        double seconds = 0;
        std::array<double, shares.size()> peaks{};
        for (std::size_t i = 0; i < shares.size(); ++i) {
            const CommandCost cost = cost_of_command(make_command(files_[i]));
            seconds += cost.processor_seconds;
            peaks[i] = cost.peak_kilobytes;
            const std::size_t kilobytes = bytes_of(scene_.settings, shares[i]) / 1024;
            scene_.figures.add("peak memory in KB, " + what + ", " + std::to_string(kilobytes) +
                                   " KB document: " + reader_.name,
                               peaks[i]);
        }
        scene_.figures.add("memory growth in KB: " + what + ", " + reader_.name,
                           peaks.back() - peaks.front());
        return seconds;
    }

    const Scene &scene_;
    const ReaderCase &reader_;
    TemporaryDirectory directory_;
    std::vector<std::string> files_;
};

} // namespace

void register_command_benchmarks(const Scene &scene)
{
    const int rounds = (scene.settings.rounds + rounds_divisor - 1) / rounds_divisor;
    const auto growth = std::make_shared<GrowthBenchmark>(scene);
    register_rounds("pfsdoc/prose beside other commands", rounds,
                    [growth] { return growth->measure(); });
    const auto letter = std::make_shared<LetterCommandBenchmark>(scene);
    register_rounds("pfsdoc/letter", scene.settings.rounds, [letter] { return letter->measure(); });
    for (const ReaderCase &reader : reader_cases()) {
        const auto memory = std::make_shared<MemoryBenchmark>(scene, reader);
        register_rounds(std::string(reader.name) + "/memory", rounds,
                        [memory] { return memory->measure(); });
    }
}

} // namespace bench
