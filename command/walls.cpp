// The record lies in memory that both processes share, and is looked at when the other one has
// ended.
#include "command/walls.h"

#include "lib/base/descriptor.h"
#include "lib/base/scratch_file.h"
#include "pfsdoc/loss_report.h"
#ifdef PFSDOC_HAS_SANDBOX
#include "sandbox/sandbox.h"
#endif

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <fcntl.h>
#include <new>
#include <stdexcept>
#include <string_view>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/types.h>
#include <sys/wait.h>
#include <type_traits>
#include <unistd.h>
#include <utility>
#include <vector>

namespace pfsdoc::cli {

namespace {

using Work = std::function<Converted()>;

#ifdef PFSDOC_HAS_SANDBOX

constexpr std::size_t most_losses = static_cast<std::size_t>(Loss::character) + 1;

enum class WorkEnd : uint32_t { none, done, failed, without_memory, fault };

// What does not fit is cut off.
using Words = std::array<char, 1024>;

void set(Words &words, std::string_view text)
{
    words = {};
    std::copy_n(text.begin(), std::min(text.size(), words.size()), words.begin());
}

std::string text_of(const Words &words)
{
    return {words.begin(), std::find(words.begin(), words.end(), '\0')};
}

// What became of the work.
struct WorkRecord {
    WorkEnd end = WorkEnd::none;
    ErrorKind kind = ErrorKind::internal; // where it failed
    uint32_t has_offset = 0;
    uint64_t offset = 0;
    Words what{}; // or of the fault
    Words remedy{};
    base::OutputState output;
    std::size_t losses = 0;
    std::array<LossEntry, most_losses> loss{};
    uint32_t has_after_end = 0;
    AfterEnd after_end{};
};
static_assert(std::is_trivially_copyable_v<WorkRecord>);

const LossEntry *end_of_losses(const WorkRecord &record)
{
    return record.loss.data() + std::min(record.losses, most_losses);
}

void record(const Converted &converted, WorkRecord &record)
{
    record.losses = std::min(converted.losses.size(), most_losses);
    std::copy_n(converted.losses.begin(), record.losses, record.loss.begin());
    record.has_after_end = converted.after_end ? 1 : 0;
    record.after_end = converted.after_end.value_or(AfterEnd{});
    record.end = converted.status.ok() ? WorkEnd::done : WorkEnd::failed;
    if (!converted.status.ok()) {
        const Error &error = converted.status.error();
        record.kind = error.kind;
        record.has_offset = error.offset ? 1 : 0;
        record.offset = error.offset.value_or(0);
        set(record.what, error.what);
        set(record.remedy, error.remedy);
    }
}

void do_work(const Work &work, base::DescriptorOutput &output, WorkRecord &result)
{
    try {
        const Converted converted = work();
        output.flush();
        record(converted, result);
    } catch (const std::bad_alloc &) {
        result.end = WorkEnd::without_memory;
    } catch (const std::exception &fault) {
        set(result.what, fault.what());
        result.end = WorkEnd::fault;
    }
    result.output = output.state();
}

Converted converted_of(const WorkRecord &record)
{
    if (record.end == WorkEnd::without_memory) {
        throw std::bad_alloc();
    }
    if (record.end == WorkEnd::fault) {
        throw std::runtime_error(text_of(record.what));
    }
    Converted converted;
    if (record.end != WorkEnd::done) {
        Error error{record.kind, text_of(record.what), text_of(record.remedy)};
        error.offset = record.has_offset != 0 ? std::optional(record.offset) : std::nullopt;
        converted.status = std::move(error);
    }
    converted.losses.assign(record.loss.data(), end_of_losses(record));
    if (record.has_after_end != 0) {
        converted.after_end = record.after_end;
    }
    return converted;
}

// Memory that a process shares with those it forks.
class SharedRecord {
public:
    SharedRecord()
        : memory_(::mmap(nullptr, sizeof(WorkRecord), PROT_READ | PROT_WRITE,
                         MAP_SHARED | MAP_ANONYMOUS, -1, 0))
    {
        if (memory_ == MAP_FAILED) {
            throw std::bad_alloc();
        }
        record_ = new (memory_) WorkRecord;
    }
    ~SharedRecord()
    {
        ::munmap(memory_, sizeof(WorkRecord));
    }
    SharedRecord(const SharedRecord &) = delete;
    SharedRecord &operator=(const SharedRecord &) = delete;

    WorkRecord &operator*() const
    {
        return *record_;
    }

private:
    void *memory_;
    WorkRecord *record_ = nullptr;
};

// What a person types or sees is none of the document's business.
void leave_standard_streams(int nowhere, int output)
{
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (stream == output) {
            continue;
        }
        if (nowhere < 0) {
            ::close(stream);
        } else {
            ::dup2(nowhere, stream);
        }
    }
}

[[noreturn]] void work_behind_walls(sandbox::Mode mode, pid_t parent, int nowhere, const Work &work,
                                    base::DescriptorOutput &output, WorkRecord &result) noexcept
{
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    ::prctl(PR_SET_NAME, "pfsdoc-reader");
    if (::getppid() != parent) {
        ::_exit(EXIT_FAILURE);
    }
    leave_standard_streams(nowhere, output.descriptor());
    const Result<sandbox::Report> report = sandbox::enter(mode);
    if (report.ok()) {
        do_work(work, output, result);
    } else {
        record({report.error(), {}, {}}, result);
    }
    ::_exit(EXIT_SUCCESS);
}

Error no_process(int error_number)
{
    return {ErrorKind::internal,
            std::string("no process can be started: ") + std::strerror(error_number),
            "close other programs and try again"};
}

// The record is checked as what a stranger wrote.
bool is_sane(const WorkRecord &record)
{
    const auto is_known = [](const LossEntry &entry) { return entry.loss <= Loss::character; };
    return record.end > WorkEnd::none && record.end <= WorkEnd::fault &&
           record.kind >= ErrorKind::usage && record.kind <= ErrorKind::interrupted &&
           record.losses <= most_losses &&
           std::all_of(record.loss.data(), end_of_losses(record), is_known);
}

Converted ended_early(int wait_status)
{
    const std::string how = WIFSIGNALED(wait_status)
                                ? "by signal " + std::to_string(WTERMSIG(wait_status))
                                : "without a report";
    return {Error{ErrorKind::internal, "the process that read it was ended " + how,
                  "please report this as a fault of pfsdoc"},
            {},
            {}};
}

Converted in_walls(sandbox::Mode mode, base::DescriptorOutput &output, const Work &work)
{
    if (mode == sandbox::Mode::off) {
        return work();
    }
    output.flush(); // else both would write it
    const SharedRecord shared;
    const base::Descriptor nowhere(::open("/dev/null", O_RDWR | O_CLOEXEC));
    const pid_t parent = ::getpid();
    const pid_t child = ::fork();
    if (child == 0) {
        work_behind_walls(mode, parent, nowhere.get(), work, output, *shared);
    }
    if (child < 0) {
        return {no_process(errno), {}, {}};
    }
    int status = 0;
    while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    const WorkRecord result = *shared;
    if (!is_sane(result)) {
        return ended_early(status);
    }
    output.resume(result.output);
    return converted_of(result);
}

#else

Converted in_walls(sandbox::Mode mode, base::DescriptorOutput &, const Work &work)
{
    if (mode == sandbox::Mode::required) {
        return {Error{ErrorKind::internal, "the sandbox is not available: it was not built in",
                      "install libseccomp and build again, or read without it with --sandbox=off"},
                {},
                {}};
    }
    return work();
}

#endif

} // namespace

sandbox::Mode wanted_walls(const Arguments &arguments)
{
    if (arguments.sandbox == "require") {
        return sandbox::Mode::required;
    }
    return arguments.sandbox == "available" ? sandbox::Mode::available : sandbox::Mode::off;
}

Converted convert_in_walls(sandbox::Mode mode, std::unique_ptr<ByteSource> source,
                           const Module &module, const std::string &title,
                           const Conversion &conversion, base::DescriptorOutput &output)
{
    std::vector<base::Descriptor> scratch;
    std::vector<int> descriptors;
    while (mode != sandbox::Mode::off && scratch.size() < conversion.format->scratch_files) {
        scratch.emplace_back(base::open_scratch_file());
        if (!scratch.back().is_open()) {
            return {base::scratch_error(errno), {}, {}};
        }
        descriptors.push_back(scratch.back().get());
    }
    Conversion prepared = conversion;
    prepared.options.scratch_files = descriptors;
    return in_walls(mode, output, [&] {
        return convert_document(std::move(source), module, title, prepared, output);
    });
}

Status work_in_walls(sandbox::Mode mode, base::DescriptorOutput &output,
                     const std::function<Status()> &work)
{
    return in_walls(mode, output, [&work] { return Converted{work(), {}, {}}; }).status;
}

} // namespace pfsdoc::cli
