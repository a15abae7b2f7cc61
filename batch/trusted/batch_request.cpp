#include "batch/trusted/batch_request.h"

#include "batch/trusted/input_identities.h"

#include <algorithm>
#include <filesystem>
#include <sched.h>
#include <system_error>

namespace pfsdoc::batch {

namespace {

bool lies_in(const std::filesystem::path &inner, const std::filesystem::path &outer)
{
    const auto [end, rest] = std::mismatch(outer.begin(), outer.end(), inner.begin(), inner.end());
    return end == outer.end();
}

} // namespace

Status check_paths(const BatchRequest &request)
{
    for (const std::string &list : request.inputs.list_files) {
        if (request.overwrite && !can_be_read_twice(list)) {
            return Error{ErrorKind::usage,
                         "--overwrite needs a list that can be read twice, to spare what it names",
                         "write it to a file first"};
        }
    }
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
                         "name another file with --manifest"};
        }
    }
    return {};
}

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

std::size_t count_processors()
{
    cpu_set_t set;
    CPU_ZERO(&set);
    constexpr pid_t this_process = 0;
    const bool is_known = ::sched_getaffinity(this_process, sizeof set, &set) == 0;
    return static_cast<std::size_t>(is_known ? std::max(CPU_COUNT(&set), 1) : 1);
}

} // namespace pfsdoc::batch
