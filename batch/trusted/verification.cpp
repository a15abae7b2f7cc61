#include "batch/trusted/verification.h"

#include "batch/trusted/manifest.h"
#include "batch/trusted/recorded_line.h"
#include "batch/trusted/reserved_names.h"
#include "cli/report.h"
#include "lib/base/escaped_name.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <functional>
#include <sys/file.h>
#include <sys/stat.h>
#include <unordered_set>

namespace pfsdoc::batch {

namespace {

constexpr int some_differ = 1;
constexpr std::size_t printed_at_once = 65536;
constexpr int safe_flags = O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;

Error cannot_be_verified(const std::string &path, const std::string &why, const std::string &remedy)
{
    return {ErrorKind::input, path + " " + why, remedy};
}

// Names by their hashes: a collision could only hide a file that is not in the manifest.
class NameHashes {
public:
    // Whether it is new.
    bool add(const std::string &name)
    {
        return hashes_.insert(std::hash<std::string>()(name)).second;
    }
    bool has(const std::string &name) const
    {
        return hashes_.contains(std::hash<std::string>()(name));
    }

private:
    std::unordered_set<std::size_t> hashes_;
};

class Verification {
public:
    Verification(const VerificationRequest &request, FolderTree tree)
        : request_(request), tree_(std::move(tree)), reserved_(request.output, request.manifest)
    {
    }

    Status run();
    // Prints what is left to be printed; the exit code.
    int finish();

private:
    Status read_manifest(const ManifestPlace &place);
    void check_line(std::string_view line, uint64_t number);
    void check_output(const RecordedOutput &output);
    std::string problem_of(const RecordedOutput &output);
    void look_for_others();
    void check_other(const std::string &folder, const std::string &file);
    void report(const std::string &name, const std::string &words);

    const VerificationRequest &request_;
    FolderTree tree_;
    ReservedNames reserved_;
    NameHashes outputs_; // of the manifest
    NameHashes earlier_; // of runs before its own
    NameHashes others_;  // files that it names: those that were read, and that were kept
    uint64_t verified_ = 0;
    uint64_t differences_ = 0;
    std::string text_;
    int print_code_ = 0;
};

void Verification::report(const std::string &name, const std::string &words)
{
    text_ += base::escaped_name(name) + ": " + words + "\n";
    if (text_.size() >= printed_at_once) {
        print_code_ = print_code_ == 0 ? cli::print(text_) : print_code_;
        text_.clear();
    }
}

Status Verification::run()
{
    const Result<ManifestPlace> place = ManifestPlace::open(request_.manifest);
    if (!place.ok()) {
        return cannot_be_verified(request_.manifest, "cannot be read",
                                  "name the manifest with --manifest");
    }
    if (Status fault = read_manifest(place.value()); !fault.ok()) {
        return fault;
    }
    look_for_others();
    return {};
}

Status Verification::read_manifest(const ManifestPlace &place)
{
    const Result<base::Descriptor> file = open_manifest_file(place, "");
    if (!file.ok()) {
        return Error{ErrorKind::input, file.error().what, file.error().remedy};
    }
    const Result<base::Descriptor> partial = open_manifest_file(place, partial_ending);
    const bool is_partial = !partial.ok() || partial.value().is_open();
    if (!file.value().is_open()) {
        return is_partial
                   ? cannot_be_verified(request_.manifest, "is not finished", "run the batch again")
                   : cannot_be_verified(request_.manifest, "does not exist",
                                        "name the manifest with --manifest");
    }
    if (is_partial) {
        ++differences_;
        report(request_.manifest + partial_ending, "a later run did not come to its end");
    }
    const Result<base::Descriptor> earlier = open_manifest_file(place, earlier_ending);
    if (earlier.ok() && earlier.value().is_open()) {
        static_cast<void>(
            read_lines(earlier.value().get(), [this](std::string_view line, uint64_t) {
                earlier_.add(output_of_line(line));
            }));
    }
    uint64_t number = 0;
    const bool is_read = read_lines(
        file.value().get(), [&](std::string_view line, uint64_t) { check_line(line, ++number); });
    return is_read ? Status()
                   : cannot_be_verified(request_.manifest,
                                        std::string("cannot be read: ") + std::strerror(errno),
                                        "check where it lies");
}

void Verification::check_line(std::string_view line, uint64_t number)
{
    const std::optional<RecordedLine> recorded = recorded_line(line);
    const bool has_status_of_output =
        recorded && (recorded->status == "converted" || recorded->status == "damaged");
    if (!recorded || recorded->output.has_value() != has_status_of_output) {
        ++differences_;
        report(request_.manifest, "line " + std::to_string(number) + " is not one of a manifest");
        return;
    }
    others_.add(recorded->name);
    if (recorded->status == "kept") {
        others_.add(recorded->output_name);
    }
    if (recorded->output) {
        check_output(*recorded->output);
    }
}

void Verification::check_output(const RecordedOutput &output)
{
    std::string problem = outputs_.add(output.name) ? problem_of(output)
                                                    : "two lines of the manifest have this output";
    if (problem.empty()) {
        ++verified_;
    } else {
        ++differences_;
        report(output.name, problem);
    }
}

// Empty where it is as it should be.
std::string Verification::problem_of(const RecordedOutput &output)
{
    const auto [folder, name] = split_name(output.name);
    const int opened = tree_.open(folder, FolderTree::Missing::refused);
    const base::Descriptor file(opened < 0 ? -1 : ::openat(opened, name.c_str(), safe_flags));
    if (!file.is_open()) {
        return errno == ENOENT ? "is missing"
                               : std::string("cannot be read: ") + std::strerror(errno);
    }
    struct stat status {};
    if (::fstat(file.get(), &status) != 0 || !S_ISREG(status.st_mode)) {
        return "is not a regular file";
    }
    if (static_cast<uint64_t>(status.st_size) != output.content.size) {
        return "has changed: its size is " + std::to_string(status.st_size) + ", and was " +
               std::to_string(output.content.size);
    }
    return content_of(file.get(), output.content.size) == output.content
               ? ""
               : "has changed: its SHA-256 is another one";
}

void Verification::look_for_others()
{
    visit_files(tree_, [this](const std::string &folder, const std::string &file) {
        check_other(folder, file);
    });
}

void Verification::check_other(const std::string &folder, const std::string &file)
{
    const std::string name = folder.empty() ? file : folder + "/" + file;
    if (file.empty()) {
        ++differences_;
        report(folder.empty() ? request_.output : folder, "cannot be listed");
    } else if (!reserved_.is(name) && !outputs_.has(name) && !others_.has(name)) {
        const bool is_earlier = earlier_.has(name);
        differences_ += is_earlier ? 0 : 1;
        report(name, is_earlier ? "is an output of an earlier run, not of the last"
                                : "is not in the manifest");
    }
}

int Verification::finish()
{
    if (print_code_ == 0 && !text_.empty()) {
        print_code_ = cli::print(text_);
    }
    if (!request_.quiet) {
        const auto counted = [](uint64_t count, const char *word) {
            return std::to_string(count) + " " + word + (count == 1 ? "" : "s");
        };
        cli::report_line(counted(verified_, "output") + " verified, " +
                         counted(differences_, "difference"));
    }
    return print_code_ != 0 ? print_code_ : differences_ > 0 ? some_differ : 0;
}

} // namespace

int verify_outputs(const VerificationRequest &request)
{
    base::Descriptor folder(::open(request.output.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!folder.is_open()) {
        return cli::report(
            "", cannot_be_verified(request.output,
                                   std::string("cannot be opened: ") + std::strerror(errno),
                                   "name the output folder of a batch"));
    }
    if (::flock(folder.get(), LOCK_SH | LOCK_NB) != 0 && errno == EWOULDBLOCK) {
        return cli::report("", cannot_be_verified(request.output, "is being written to by a run",
                                                  "wait until it has finished"));
    }
    Verification verification(request, FolderTree(std::move(folder)));
    const Status fault = verification.run();
    return fault.ok() ? verification.finish() : cli::report("", fault.error());
}

} // namespace pfsdoc::batch
