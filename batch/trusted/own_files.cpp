#include "batch/trusted/own_files.h"

#include "batch/trusted/recorded_line.h"

#include <array>
#include <functional>
#include <limits.h>
#include <sys/stat.h>
#include <unistd.h>

namespace pfsdoc::batch {

namespace {

// Where the file lies, without a link on the way; empty where the system does not say.
std::string path_of(int descriptor)
{
    std::array<char, PATH_MAX> path{};
    const std::string link = "/proc/self/fd/" + std::to_string(descriptor);
    const ssize_t size = ::readlink(link.c_str(), path.data(), path.size());
    return {path.data(), static_cast<std::size_t>(size < 0 ? 0 : size)};
}

} // namespace

OwnFiles::OwnFiles(const OutputFolder &folder, const ReservedNames &reserved,
                   const EarlierLines &earlier)
    : folder_(folder), reserved_(reserved), earlier_(earlier), path_(path_of(folder.descriptor()))
{
    path_ += path_.ends_with('/') ? "" : "/";
}

void OwnFiles::add(const std::string &output)
{
    added_.insert(std::hash<std::string>()(output));
}

bool OwnFiles::has(int file) const
{
    const std::string path = path_of(file);
    if (!path.starts_with(path_)) {
        return false;
    }
    const std::string name = path.substr(path_.size());
    return reserved_.is(name) || folder_.is_temporary(name) ||
           added_.contains(std::hash<std::string>()(name)) || is_earlier_output(file, name);
}

bool OwnFiles::is_earlier_output(int file, const std::string &name) const
{
    struct stat status {};
    if (::fstat(file, &status) != 0) {
        return false;
    }
    const auto size = static_cast<uint64_t>(status.st_size);
    for (const std::string &line : earlier_.find(name)) {
        const std::optional<RecordedLine> recorded = recorded_line(line);
        if (recorded && recorded->output && recorded->output->name == name &&
            recorded->output->content.size == size &&
            content_of(file, size) == recorded->output->content) {
            return true;
        }
    }
    return false;
}

} // namespace pfsdoc::batch
