#include "batch/trusted/manifest.h"

#include "batch/trusted/folder_tree.h"
#include "lib/base/transfers.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <optional>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace pfsdoc::batch {

namespace {

constexpr mode_t new_file_mode = 0666;
constexpr mode_t mode_bits = 07777;
constexpr std::size_t read_at_once = 65536;
constexpr std::size_t recognized_bytes = 512;
constexpr int safe_flags = O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
constexpr int append_flags = O_RDWR | O_CREAT | O_APPEND | safe_flags;
constexpr std::string_view line_start = "{\"name\":";

Error cannot_be_written(const std::string &path, int error_number)
{
    return {
        ErrorKind::output,
        "the manifest " + path + " cannot be written: " + std::strerror(error_number),
        "free some space or name another file with --manifest; the next run continues from here"};
}

Error foreign_file(const std::string &path, const std::string &what)
{
    return {ErrorKind::output, path + " " + what,
            "move it away, or name another file with --manifest"};
}

// The first line of a manifest, or its beginning where a run was killed. Line ends before it are
// what separates runs, and a power failure may leave NUL bytes.
bool begins_as_manifest(int file)
{
    std::array<char, recognized_bytes> buffer{};
    const auto size = base::read_full_at(file, buffer.data(), buffer.size(), 0);
    if (!size) {
        return false;
    }
    const std::string_view text(buffer.data(), *size);
    const std::size_t begin = text.find_first_not_of(std::string_view("\n\0", 2));
    const std::string_view line =
        begin == std::string_view::npos ? "" : text.substr(begin, text.find('\n', begin) - begin);
    return line.starts_with(line_start) || line_start.starts_with(line);
}

// Whether the file of that path is one to be used as a manifest.
Status check_file(int file, const std::string &path, bool is_appended)
{
    struct stat status {};
    if (::fstat(file, &status) != 0) {
        return cannot_be_written(path, errno);
    }
    if (!S_ISREG(status.st_mode)) {
        return foreign_file(path, "is not a regular file");
    }
    if (is_appended && status.st_nlink > 1) {
        return foreign_file(path, "has another name, under which it would be changed, too");
    }
    return begins_as_manifest(file) ? Status()
                                    : foreign_file(path, "is not a manifest of pfsdoc batch");
}

Error not_opened(const std::string &path, int error_number)
{
    return error_number == ELOOP ? foreign_file(path, "is a symbolic link, which is not followed")
                                 : cannot_be_written(path, error_number);
}

// To be read and appended to.
Result<base::Descriptor> open_to_append(const ManifestPlace &place, const char *ending)
{
    const std::string path = place.path + ending;
    const std::string name = place.name + ending;
    base::Descriptor file(::openat(place.folder.get(), name.c_str(), append_flags, new_file_mode));
    if (!file.is_open()) {
        return not_opened(path, errno);
    }
    const Status fault = check_file(file.get(), path, true);
    return fault.ok() ? std::move(file) : Result<base::Descriptor>(fault.error());
}

bool has_name(int file, const ManifestPlace &place, const char *ending)
{
    struct stat opened {};
    struct stat named {};
    const std::string name = place.name + ending;
    return ::fstat(file, &opened) == 0 &&
           ::fstatat(place.folder.get(), name.c_str(), &named, AT_SYMLINK_NOFOLLOW) == 0 &&
           opened.st_dev == named.st_dev && opened.st_ino == named.st_ino;
}

// From the start of one to the end of the other; 0, or the error's number.
int append_file(int from, int to)
{
    std::array<char, read_at_once> buffer;
    for (uint64_t offset = 0;;) {
        const ssize_t count = base::read_some_at(from, buffer.data(), buffer.size(), offset);
        if (count == 0) {
            return ::fsync(to) == 0 ? 0 : errno;
        }
        if (count < 0 || !base::write_all(to, {buffer.data(), static_cast<std::size_t>(count)})) {
            return errno;
        }
        offset += static_cast<uint64_t>(count);
    }
}

} // namespace

Result<ManifestPlace> ManifestPlace::open(const std::string &path)
{
    auto [folder, name] = split_name(path);
    const std::string opened = folder.empty() ? (path.starts_with('/') ? "/" : ".") : folder;
    base::Descriptor descriptor(::open(opened.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!descriptor.is_open()) {
        return cannot_be_written(path, errno);
    }
    return ManifestPlace{std::move(descriptor), path, std::move(name)};
}

Result<base::Descriptor> open_manifest_file(const ManifestPlace &place, const char *ending)
{
    const std::string path = place.path + ending;
    const std::string name = place.name + ending;
    base::Descriptor file(::openat(place.folder.get(), name.c_str(), O_RDONLY | safe_flags));
    if (!file.is_open()) {
        return errno == ENOENT ? Result<base::Descriptor>(base::Descriptor())
                               : not_opened(path, errno);
    }
    const Status fault = check_file(file.get(), path, false);
    return fault.ok() ? std::move(file) : Result<base::Descriptor>(fault.error());
}

Error Manifest::not_written(const char *ending, int error_number) const
{
    return cannot_be_written(place_.path + ending, error_number);
}

Result<Manifest> Manifest::open(const std::string &path, EarlierLines::OutputOfLine output_of)
{
    Result<ManifestPlace> place = ManifestPlace::open(path);
    if (!place.ok()) {
        return place.error();
    }
    Manifest manifest(std::move(place.value()), std::move(output_of));
    for (Status (Manifest::*step)() : {&Manifest::check_names, &Manifest::lock_partial,
                                       &Manifest::set_aside, &Manifest::read_earlier}) {
        if (Status fault = (manifest.*step)(); !fault.ok()) {
            return fault.error();
        }
    }
    return manifest;
}

// Before anything is made or changed.
Status Manifest::check_names()
{
    for (const char *ending : {"", partial_ending, earlier_ending, new_earlier_ending}) {
        if (const auto file = open_manifest_file(place_, ending); !file.ok()) {
            return file.error();
        }
    }
    return {};
}

// Whoever had the lock may have renamed the file before it let go, or taken it away.
Status Manifest::lock_partial()
{
    do {
        Result<base::Descriptor> file = open_to_append(place_, partial_ending);
        if (!file.ok()) {
            return file.error();
        }
        file_ = std::move(file.value());
        if (::flock(file_.get(), LOCK_EX | LOCK_NB) != 0) {
            return Error{ErrorKind::output,
                         "another run is writing " + place_.path + partial_ending,
                         "wait until it has finished"};
        }
    } while (!has_name(file_.get(), place_, partial_ending));
    return {};
}

// The line that was cut when the earlier run was ended gets an end of its own.
Status Manifest::set_aside()
{
    if (::lseek(file_.get(), 0, SEEK_END) == 0) {
        return {};
    }
    if (Status fault = open_announced(); !fault.ok()) {
        return fault;
    }
    if (!base::write_all(announced_.get(), "\n")) {
        return not_written(earlier_ending, errno);
    }
    if (const int error_number = append_file(file_.get(), announced_.get()); error_number != 0) {
        return not_written(earlier_ending, error_number);
    }
    return ::ftruncate(file_.get(), 0) == 0 ? Status() : not_written(partial_ending, errno);
}

// The newest last.
Status Manifest::read_earlier()
{
    for (const char *ending : {"", earlier_ending}) {
        Result<base::Descriptor> file = open_manifest_file(place_, ending);
        if (!file.ok()) {
            return file.error();
        }
        if (file.value().is_open()) {
            earlier_.add_file(std::move(file.value()));
        }
    }
    earlier_.sort();
    return {};
}

Status Manifest::add(std::string_view lines, const std::vector<std::string> &outputs)
{
    for (const std::string &output : outputs) {
        earlier_.claim(output);
    }
    return base::write_all(file_.get(), lines) ? Status() : not_written(partial_ending, errno);
}

Status Manifest::open_announced()
{
    if (!announced_.is_open()) {
        Result<base::Descriptor> file = open_to_append(place_, earlier_ending);
        if (!file.ok()) {
            return file.error();
        }
        announced_ = std::move(file.value());
    }
    return {};
}

void Manifest::announce(std::string_view lines)
{
    if (open_announced().ok()) {
        is_cut_ = (is_cut_ && !base::write_all(announced_.get(), "\n")) ||
                  !base::write_all(announced_.get(), lines);
    }
}

// A run that is killed in here leaves more lines than are needed, never fewer.
Status Manifest::finish(const IsWanted &is_wanted)
{
    Status fault = write_unclaimed(is_wanted);
    fault = fault.ok() ? rename_partial() : fault;
    return fault.ok() ? rename_unclaimed() : fault;
}

// The next file of earlier lines; there is none where nothing is left to remember.
Status Manifest::write_unclaimed(const IsWanted &is_wanted)
{
    std::string lines;
    earlier_.visit_unclaimed([&](const std::vector<std::string> &candidates) {
        const auto wanted = std::find_if(candidates.begin(), candidates.end(), is_wanted);
        if (wanted != candidates.end()) {
            lines += *wanted + "\n";
            ++unclaimed_outputs_;
        }
    });
    const std::string name = place_.name + new_earlier_ending;
    ::unlinkat(place_.folder.get(), name.c_str(), 0);
    if (lines.empty()) {
        return {};
    }
    const base::Descriptor file(::openat(place_.folder.get(), name.c_str(),
                                         O_WRONLY | O_CREAT | O_EXCL | safe_flags, new_file_mode));
    return file.is_open() && base::write_all(file.get(), lines) && ::fsync(file.get()) == 0
               ? Status()
               : not_written(new_earlier_ending, errno);
}

// With the mode of the manifest that it replaces.
Status Manifest::rename_partial()
{
    const Result<base::Descriptor> replaced = open_manifest_file(place_, "");
    if (!replaced.ok()) {
        return replaced.error();
    }
    struct stat status {};
    if (replaced.value().is_open() && ::fstat(replaced.value().get(), &status) == 0) {
        static_cast<void>(::fchmod(file_.get(), status.st_mode & mode_bits));
    }
    const std::string partial = place_.name + partial_ending;
    if (::fsync(file_.get()) != 0 || ::renameat(place_.folder.get(), partial.c_str(),
                                                place_.folder.get(), place_.name.c_str()) != 0) {
        return not_written("", errno);
    }
    return {};
}

Status Manifest::rename_unclaimed()
{
    const int folder = place_.folder.get();
    const std::string earlier = place_.name + earlier_ending;
    const std::string next = place_.name + new_earlier_ending;
    const int failed = unclaimed_outputs_ > 0
                           ? ::renameat(folder, next.c_str(), folder, earlier.c_str())
                           : ::unlinkat(folder, earlier.c_str(), 0);
    if ((failed != 0 && errno != ENOENT) || ::fsync(folder) != 0) {
        return not_written(earlier_ending, errno);
    }
    return {};
}

} // namespace pfsdoc::batch
