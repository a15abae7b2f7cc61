#include "batch/trusted/manifest.h"

#include "batch/trusted/record.h"
#include "lib/base/printable.h"
#include "lib/base/transfers.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <fstream>
#include <sys/file.h>
#include <unistd.h>

namespace pfsdoc::batch {

namespace {

constexpr mode_t new_file_mode = 0666;
constexpr std::size_t read_at_once = 65536;

Error not_written(const std::string &path, int error_number)
{
    return {
        ErrorKind::output,
        "the manifest " + path + " cannot be written: " + std::strerror(error_number),
        "free some space or name another file with --manifest; the next run continues from here"};
}

Status write(int descriptor, std::string_view bytes, const std::string &path)
{
    return base::write_all(descriptor, bytes) ? Status() : not_written(path, errno);
}

// From the start of one to the end of the other.
Status append_file(int from, int to, const std::string &path)
{
    std::array<char, read_at_once> buffer;
    for (uint64_t offset = 0;;) {
        const ssize_t count = base::read_some_at(from, buffer.data(), buffer.size(), offset);
        if (count == 0) {
            return ::fsync(to) == 0 ? Status() : not_written(path, errno);
        }
        if (count < 0) {
            return not_written(path, errno);
        }
        const auto size = static_cast<std::size_t>(count);
        if (Status fault = write(to, {buffer.data(), size}, path); !fault.ok()) {
            return fault;
        }
        offset += size;
    }
}

uint64_t part_of_digest(std::string_view name)
{
    const Digest digest = sha256_of(name);
    uint64_t part = 0;
    std::memcpy(&part, digest.data(), sizeof part);
    return part;
}

} // namespace

// ------------------------------------------------------------------ earlier lines -----

void EarlierLines::add_file(const std::string &path)
{
    base::Descriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
    if (file.get() < 0) {
        return;
    }
    std::ifstream stream(path, std::ios::binary);
    uint64_t offset = 0;
    for (std::string line; std::getline(stream, line); offset += line.size() + 1) {
        // The last line is whole where a line end is behind it.
        const std::optional<std::string> name = recorded_name(line);
        if (name && !stream.eof()) {
            locations_.push_back(
                {part_of_digest(*name), offset & ((uint64_t{1} << 56) - 1), files_.size() & 0xFFU});
        }
    }
    files_.push_back(std::move(file));
}

void EarlierLines::sort()
{
    std::stable_sort(locations_.begin(), locations_.end(),
                     [](const Location &one, const Location &other) {
                         return one.name_digest < other.name_digest;
                     });
}

std::string EarlierLines::line_at(const Location &location) const
{
    std::string line;
    std::array<char, 1024> buffer;
    for (auto position = static_cast<off_t>(location.offset);;) {
        const ssize_t count =
            ::pread(files_[location.file].get(), buffer.data(), buffer.size(), position);
        if (count <= 0) {
            return {};
        }
        const std::string_view part(buffer.data(), static_cast<std::size_t>(count));
        const std::size_t end = part.find('\n');
        line.append(part.substr(0, end));
        if (end != std::string_view::npos) {
            return line;
        }
        position += count;
    }
}

std::vector<std::string> EarlierLines::find(const std::string &name) const
{
    const uint64_t wanted = part_of_digest(base::printable(name));
    auto location = std::lower_bound(
        locations_.begin(), locations_.end(), wanted,
        [](const Location &one, uint64_t digest) { return one.name_digest < digest; });
    std::vector<std::string> lines;
    for (; location != locations_.end() && location->name_digest == wanted; ++location) {
        lines.insert(lines.begin(), line_at(*location));
    }
    return lines;
}

// ----------------------------------------------------------------------- manifest -----

Result<Manifest> Manifest::open(const std::string &path)
{
    const std::string partial = path + ".partial";
    base::Descriptor file(
        ::open(partial.c_str(), O_RDWR | O_CREAT | O_APPEND | O_CLOEXEC, new_file_mode));
    if (file.get() < 0) {
        return not_written(partial, errno);
    }
    if (::flock(file.get(), LOCK_EX | LOCK_NB) != 0) {
        return Error{ErrorKind::output, "another run is writing " + partial,
                     "wait until it has finished"};
    }
    Manifest manifest(path, std::move(file));
    if (Status fault = manifest.set_aside(); !fault.ok()) {
        return fault.error();
    }
    // The newest last.
    manifest.earlier_.add_file(path);
    manifest.earlier_.add_file(path + ".earlier");
    manifest.earlier_.sort();
    return manifest;
}

// The line that was cut when the earlier run was ended gets an end of its own.
Status Manifest::set_aside()
{
    if (::lseek(file_.get(), 0, SEEK_END) == 0) {
        return {};
    }
    const std::string path = path_ + ".earlier";
    const base::Descriptor earlier(
        ::open(path.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, new_file_mode));
    if (earlier.get() < 0) {
        return not_written(path, errno);
    }
    if (Status fault = write(earlier.get(), "\n", path); !fault.ok()) {
        return fault;
    }
    if (Status fault = append_file(file_.get(), earlier.get(), path); !fault.ok()) {
        return fault;
    }
    return ::ftruncate(file_.get(), 0) == 0 ? Status() : not_written(path_ + ".partial", errno);
}

Status Manifest::add(std::string_view line)
{
    return write(file_.get(), line, path_ + ".partial");
}

Status Manifest::finish()
{
    const std::string partial = path_ + ".partial";
    if (::fsync(file_.get()) != 0 || ::rename(partial.c_str(), path_.c_str()) != 0) {
        return not_written(path_, errno);
    }
    ::unlink((path_ + ".earlier").c_str());
    return {};
}

} // namespace pfsdoc::batch
