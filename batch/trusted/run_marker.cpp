#include "batch/trusted/run_marker.h"

#include "lib/base/transfers.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <optional>
#include <sys/random.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace pfsdoc::batch {

namespace {

constexpr mode_t private_mode = 0600;
constexpr std::size_t number_bytes = 8;
constexpr std::size_t number_digits = 2 * number_bytes;
constexpr std::size_t most_numbers = 64;
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

using Numbers = std::vector<std::string>;

// A run that ended while it wrote its number had no temporary file yet.
Numbers whole_numbers(std::string_view text)
{
    Numbers numbers;
    for (; text.size() >= number_digits; text.remove_prefix(number_digits)) {
        numbers.emplace_back(text.substr(0, number_digits));
    }
    return numbers;
}

// The numbers in a marker, of which the last may be cut; nothing where the file is no marker.
std::optional<Numbers> left_numbers(int file)
{
    struct stat status {};
    std::array<char, most_numbers * number_digits + 1> text{};
    if (::fstat(file, &status) != 0 || !S_ISREG(status.st_mode) || status.st_nlink != 1) {
        return std::nullopt;
    }
    const auto size = base::read_full_at(file, text.data(), text.size(), 0);
    const std::string_view numbers(text.data(), size.value_or(0));
    const bool is_marker = size && numbers.size() < text.size() &&
                           numbers.find_first_not_of(digits) == std::string_view::npos;
    return is_marker ? std::optional(whole_numbers(numbers)) : std::nullopt;
}

// Whether none is left.
bool remove_left(FolderTree &tree, const Numbers &numbers)
{
    bool is_clear = true;
    visit_files(tree, [&](const std::string &folder, const std::string &file) {
        const bool is_left =
            std::any_of(numbers.begin(), numbers.end(), [&](const std::string &number) {
                return file.starts_with(temporary_start(number));
            });
        const bool is_unlisted = file.empty();
        if (is_unlisted || (is_left && ::unlinkat(tree.open(folder, FolderTree::Missing::refused),
                                                  file.c_str(), 0) != 0)) {
            is_clear = false;
        }
    });
    return is_clear;
}

// Removes what earlier runs left, and their marker. The numbers are of those of which something
// may still be there.
Result<Numbers> clear(FolderTree &tree, const std::string &path)
{
    const std::string name(marker_name);
    const base::Descriptor file(::openat(
        tree.top(), name.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    if (!file.is_open()) {
        return errno == ENOENT ? Result<Numbers>(Numbers()) : in_the_way(path);
    }
    std::optional<Numbers> numbers = left_numbers(file.get());
    if (!numbers) {
        return in_the_way(path);
    }
    if (!numbers->empty() && remove_left(tree, *numbers)) {
        numbers->clear();
    }
    if (::unlinkat(tree.top(), name.c_str(), 0) != 0) {
        return not_put(path, errno);
    }
    // One place is this run's.
    const std::size_t kept = std::min(numbers->size(), most_numbers - 1);
    return Numbers(numbers->end() - static_cast<std::ptrdiff_t>(kept), numbers->end());
}

} // namespace

Result<RunMarker> RunMarker::put(FolderTree &tree, const std::string &path)
{
    const std::string marker_path = path + "/" + std::string(marker_name);
    const Result<Numbers> left = clear(tree, marker_path);
    if (!left.ok()) {
        return left.error();
    }
    const std::optional<std::string> number = new_number();
    const base::Descriptor file(::openat(tree.top(), std::string(marker_name).c_str(),
                                         O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC,
                                         private_mode));
    if (!file.is_open() || !number) {
        return not_put(marker_path, errno);
    }
    RunMarker marker(tree, *number);
    std::string text;
    for (const std::string &earlier : left.value()) {
        text += earlier;
        marker.keep();
    }
    // It must be there when the first temporary file is, even if the machine loses its power.
    if (!base::write_all(file.get(), text + *number) || ::fsync(file.get()) != 0) {
        return not_put(marker_path, errno);
    }
    return marker;
}

RunMarker::~RunMarker()
{
    if (tree_ != nullptr && !is_kept_) {
        ::unlinkat(tree_->top(), std::string(marker_name).c_str(), 0);
    }
}

RunMarker::RunMarker(RunMarker &&other) noexcept
    : tree_(std::exchange(other.tree_, nullptr)), number_(std::move(other.number_)),
      next_(other.next_), is_kept_(other.is_kept_)
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
