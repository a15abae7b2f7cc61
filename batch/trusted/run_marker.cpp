#include "batch/trusted/run_marker.h"

#include "lib/base/transfers.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <optional>
#include <sys/random.h>
#include <sys/stat.h>
#include <unistd.h>

namespace pfsdoc::batch {

namespace {

constexpr mode_t private_mode = 0600;
constexpr std::size_t number_bytes = 8;
constexpr std::size_t number_digits = 2 * number_bytes;
constexpr std::string_view digits = "0123456789abcdef";
constexpr std::string_view name_start = ".pfsdoc-";

std::string temporary_start(const std::string &number)
{
    return std::string(name_start) + number + "-";
}

Error not_put(const std::string &path, int error_number)
{
    return {ErrorKind::output, path + " cannot be written: " + std::strerror(error_number),
            "check the folder and the right to write there"};
}

Error in_the_way(const std::string &path)
{
    return {ErrorKind::output, path + " is not what a run of pfsdoc leaves there",
            "move it away, or name another folder with -o"};
}

std::optional<std::string> new_number()
{
    std::array<unsigned char, number_bytes> bytes{};
    if (::getrandom(bytes.data(), bytes.size(), 0) != static_cast<ssize_t>(bytes.size())) {
        return std::nullopt;
    }
    std::string number;
    for (const unsigned char byte : bytes) {
        number.push_back(digits[byte / digits.size()]);
        number.push_back(digits[byte % digits.size()]);
    }
    return number;
}

// A run that ended while it wrote its number had no temporary file yet.
bool is_number_or_beginning(std::string_view text)
{
    return text.size() <= number_digits && text.find_first_not_of(digits) == std::string_view::npos;
}

// The number of a run that was killed, which may be cut; nothing where the file is no marker.
std::optional<std::string> left_number(int file)
{
    struct stat status {};
    std::array<char, number_digits + 1> text{};
    if (::fstat(file, &status) != 0 || !S_ISREG(status.st_mode) || status.st_nlink != 1) {
        return std::nullopt;
    }
    const auto size = base::read_full_at(file, text.data(), text.size(), 0);
    const std::string number(text.data(), size.value_or(0));
    return size && is_number_or_beginning(number) ? std::optional(number) : std::nullopt;
}

void remove_left(FolderTree &tree, const std::string &number)
{
    const std::string start = temporary_start(number);
    visit_files(tree, [&](const std::string &folder, const std::string &file) {
        if (file.starts_with(start)) {
            ::unlinkat(tree.open(folder, FolderTree::Missing::refused), file.c_str(), 0);
        }
    });
}

// What a killed run left is no longer there.
Status clear(FolderTree &tree, const std::string &path)
{
    const std::string name(marker_name);
    const base::Descriptor file(::openat(
        tree.top(), name.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    if (!file.is_open()) {
        return errno == ENOENT ? Status() : in_the_way(path);
    }
    const std::optional<std::string> number = left_number(file.get());
    if (!number) {
        return in_the_way(path);
    }
    if (number->size() == number_digits) {
        remove_left(tree, *number);
    }
    return ::unlinkat(tree.top(), name.c_str(), 0) == 0 ? Status() : not_put(path, errno);
}

} // namespace

Result<RunMarker> RunMarker::put(FolderTree &tree, const std::string &path)
{
    const std::string marker_path = path + "/" + std::string(marker_name);
    if (Status fault = clear(tree, marker_path); !fault.ok()) {
        return fault.error();
    }
    const std::optional<std::string> number = new_number();
    const base::Descriptor file(::openat(tree.top(), std::string(marker_name).c_str(),
                                         O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC,
                                         private_mode));
    if (!file.is_open() || !number) {
        return not_put(marker_path, errno);
    }
    RunMarker marker(tree, *number);
    // It must be there when the first temporary file is, even if the machine loses its power.
    if (!base::write_all(file.get(), *number) || ::fsync(file.get()) != 0) {
        return not_put(marker_path, errno);
    }
    return marker;
}

RunMarker::~RunMarker()
{
    if (tree_ != nullptr) {
        ::unlinkat(tree_->top(), std::string(marker_name).c_str(), 0);
    }
}

RunMarker::RunMarker(RunMarker &&other) noexcept
    : tree_(std::exchange(other.tree_, nullptr)), number_(std::move(other.number_)),
      next_(other.next_)
{
}

std::string RunMarker::next_temporary_name()
{
    return temporary_start(number_) + std::to_string(next_++);
}

bool RunMarker::is_temporary(std::string_view name) const
{
    return name.substr(name.rfind('/') + 1).starts_with(temporary_start(number_));
}

} // namespace pfsdoc::batch
