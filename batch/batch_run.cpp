#include "batch/batch_run.h"

#include "batch/inputs/archive_reader.h"
#include "batch/interruption.h"
#include "cli/report.h"
#include "batch/processes/processors.h"
#include "batch/sha256.h"

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <span>
#include <sys/eventfd.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace pfsdoc::batch {

namespace {

constexpr std::chrono::milliseconds between_looks{100};
constexpr int some_failed = 1;

bool lies_in(const std::filesystem::path &inner, const std::filesystem::path &outer)
{
    const auto [end, rest] = std::mismatch(outer.begin(), outer.end(), inner.begin(), inner.end());
    return end == outer.end();
}

// What is written must not be read: the run would not be the same when it is done again, or
// have no end. Below the folders that are read, the output's own is passed over.
Status check_places(const BatchRequest &request)
{
    namespace fs = std::filesystem;
    std::error_code failure;
    const fs::path output = fs::weakly_canonical(fs::absolute(request.output), failure);
    const fs::path manifest = fs::weakly_canonical(fs::absolute(request.manifest), failure);
    for (const std::string &path : request.inputs.paths) {
        const fs::path input = fs::canonical(path, failure);
        if (failure || !fs::is_directory(input, failure)) {
            continue;
        }
        if (input == output) {
            return Error{ErrorKind::usage, path + " would be read and written to",
                         "name another folder with -o"};
        }
        if (lies_in(manifest, input) && (lies_in(input, output) || !lies_in(manifest, output))) {
            return Error{ErrorKind::usage, "the manifest lies in " + path + ", which is read",
                         "name another place with --manifest"};
        }
    }
    return {};
}

// How many files there are, where that can be told quickly and surely: not of archives and
// lists.
std::optional<uint64_t> count_files(const InputOptions &inputs)
{
    namespace fs = std::filesystem;
    if (!inputs.list_files.empty()) {
        return std::nullopt;
    }
    uint64_t count = 0;
    for (const std::string &path : inputs.paths) {
        std::error_code failure;
        if (!fs::is_directory(path, failure)) {
            ++count;
            continue;
        }
        for (fs::recursive_directory_iterator entry(path, failure), end; !failure && entry != end;
             entry.increment(failure)) {
            count += entry->is_regular_file(failure) ? 1 : 0;
        }
    }
    return count > 0 ? std::optional(count) : std::nullopt;
}

int report_end(const BatchRequest &request, const BatchRun &run, const Status &fault)
{
    if (!request.quiet && !run.sandbox_words().empty()) {
        cli::report_line("sandbox: " + run.sandbox_words());
    }
    const bool has_failures = run.tally().failures() > 0;
    if (!request.quiet) {
        const std::string where = request.manifest + (fault ? ".partial" : "");
        cli::report_line(run.tally().words() + (has_failures || fault ? "; see " + where : ""));
    }
    if (fault) {
        return cli::report("", *fault);
    }
    return has_failures ? some_failed : 0;
}

// The library behind the digests reads files when it is first used: that comes before the
// processes that cannot.
Result<std::unique_ptr<ForkServer>> start_server(const BatchRequest &request)
{
    static_cast<void>(sha256_of(""));
    return ForkServer::start({.archive_reader =
                                  [&request](std::span<const int> descriptors) {
                                      run_archive_reader(descriptors[0], descriptors[1],
                                                         request.inputs);
                                  },
                              .worker =
                                  [&request](std::span<const int> descriptors) {
                                      run_worker(descriptors[0], request.worker);
                                  }});
}

} // namespace

BatchRun::BatchRun(const BatchRequest &request, BatchInputs &inputs, int stop, OutputFolder folder,
                   Manifest manifest, ForkServer &server)
    : folder_(std::move(folder)), manifest_(std::move(manifest)),
      stop_(stop), setting_{
                       request.recorded, folder_, manifest_.earlier(), server, request.max_time,
                       ledger_,          inputs}
{
    start_lanes(request.workers);
}

BatchRun::~BatchRun()
{
    end_lanes();
}

// Where there is no room for another thread, fewer do.
void BatchRun::start_lanes(std::size_t count)
{
    const bool are_bound = count == count_processors();
    while (lanes_.size() < count) {
        const std::size_t index = lanes_.size();
        Lane &lane = lanes_.emplace_back(setting_);
        ledger_.begin_lane();
        try {
            threads_.emplace_back([&lane, are_bound, index] {
                if (are_bound) {
                    bind_to_processor(index);
                }
                lane.work();
            });
        } catch (const std::system_error &failure) {
            ledger_.end_lane();
            if (threads_.empty()) {
                ledger_.stop({ErrorKind::internal,
                              std::string("no thread can be started: ") + failure.what(),
                              "end other programs and try again"});
            }
            return;
        }
    }
}

// Wherever they wait: for a worker or an archive, whose process this ends, for a list that
// comes out of a pipe, or for room.
void BatchRun::end_lanes()
{
    ledger_.stop({ErrorKind::internal, "the run has ended", ""});
    ::eventfd_write(stop_, 1);
    setting_.server.shut_down();
    threads_.clear();
}

Status BatchRun::run(Progress &progress)
{
    while (ledger_.wait(between_looks)) {
        if (was_interrupted()) {
            ledger_.stop({ErrorKind::interrupted, "interrupted", "the next run goes on from here"});
        }
        if (Status fault = keep_books()) {
            ledger_.stop(std::move(*fault));
        }
        if (ledger_.fault()) {
            end_lanes();
        }
        progress.show(tally_);
    }
    // What has been converted when something ends the run is kept, as far as that can be done.
    const Status unkept = keep_books();
    const Status fault = ledger_.fault();
    if (fault || unkept) {
        return fault ? fault : unkept;
    }
    return manifest_.finish();
}

Status BatchRun::keep_books()
{
    const Status fault = place();
    const Status unwritten = write_lines();
    return fault ? fault : unwritten;
}

Status BatchRun::place()
{
    std::vector<Ledger::WholeOutput> outputs = ledger_.take_gathered();
    Status fault = outputs.empty() ? Status() : folder_.sync();
    for (auto whole = outputs.begin(); whole != outputs.end() && !fault; ++whole) {
        const Status unnamed = whole->output.commit();
        if (!unnamed) {
            ledger_.place(*whole->entry, whole->status, std::move(whole->line));
        } else if (unnamed->kind == ErrorKind::usage) {
            const Outcome outcome = failed_outcome(FileStatus::name, *unnamed);
            ledger_.place(*whole->entry, outcome.status,
                          record_line(whole->file, setting_.recorded, outcome));
        } else {
            fault = unnamed;
        }
    }
    return fault;
}

Status BatchRun::write_lines()
{
    const std::string lines = ledger_.take_lines(tally_);
    return lines.empty() ? Status() : manifest_.add(lines);
}

std::string BatchRun::sandbox_words() const
{
    const auto lane = std::find_if(lanes_.begin(), lanes_.end(),
                                   [](const Lane &one) { return !one.sandbox_words().empty(); });
    return lane == lanes_.end() ? "" : lane->sandbox_words();
}

int run_batch(const BatchRequest &request)
{
    if (const Status misplaced = check_places(request)) {
        return cli::report("", *misplaced);
    }
    const Result<std::unique_ptr<ForkServer>> server = start_server(request);
    if (!server.ok()) {
        return cli::report("", server.error());
    }
    watch_interruptions();
    Result<OutputFolder> folder = OutputFolder::open(request.output);
    if (!folder.ok()) {
        return cli::report("", folder.error());
    }
    Result<Manifest> manifest = Manifest::open(request.manifest);
    if (!manifest.ok()) {
        return cli::report("", manifest.error());
    }
    const OpenFile stop(::eventfd(0, EFD_CLOEXEC));
    InputOptions options = request.inputs;
    options.stop = stop.get();
    const std::unique_ptr<BatchInputs> inputs = open_inputs(options, *server.value());
    Progress progress(request.progress, request.progress == ProgressForm::none
                                            ? std::nullopt
                                            : count_files(request.inputs));
    BatchRun run(request, *inputs, stop.get(), std::move(folder.value()),
                 std::move(manifest.value()), *server.value());
    const Status fault = run.run(progress);
    progress.clear();
    return report_end(request, run, fault);
}

} // namespace pfsdoc::batch
