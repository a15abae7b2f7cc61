#include "batch/trusted/lists.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <unistd.h>
#include <utility>

namespace pfsdoc::batch {

namespace {

constexpr std::size_t part_size = 65536;
constexpr std::size_t shown_of_long_path = 100;

// A pipe's other end need not be open yet.
int open_list(const std::string &name)
{
    return name == "-" ? ::fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, 0)
                       : ::open(name.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
}

Error long_path()
{
    return {ErrorKind::limit,
            "is longer than the " + std::to_string(longest_path) + " bytes of a path",
            "check that the list has one path a line"};
}

Error no_path()
{
    return {ErrorKind::input, "has a NUL byte, which no path has",
            "end either every path of the list with one or none"};
}

} // namespace

PathList::PathList(const std::string &name, WaitForInput wait)
    : name_(name), file_(open_list(name)), wait_(std::move(wait))
{
    if (file_.get() < 0) {
        failure_ = cannot_be_read(errno);
        at_end_ = true;
    }
    while (!at_end_ && separator_ == '\n' && buffer_.size() <= longest_path) {
        read_part();
        if (beginning().find('\0') != std::string_view::npos) {
            separator_ = '\0';
        }
    }
}

// What comes next, as far as a path and its end can reach.
std::string_view PathList::beginning() const
{
    return std::string_view(buffer_).substr(position_, longest_path + 1);
}

// No more than there is: whoever writes a list into a pipe may take time, and wait for what
// becomes of its files.
void PathList::read_part()
{
    if (!wait_(file_.get(), std::chrono::steady_clock::time_point::max())) {
        position_ = buffer_.size(); // the last line may be cut
        at_end_ = true;
        return;
    }
    buffer_.erase(0, std::exchange(position_, 0));
    const std::size_t used = buffer_.size();
    buffer_.resize(used + part_size);
    const ssize_t count = ::read(file_.get(), buffer_.data() + used, part_size);
    const int error_number = errno;
    buffer_.resize(used + static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
    if (count < 0 && error_number != EINTR && error_number != EAGAIN) {
        failure_ = cannot_be_read(error_number);
    }
    at_end_ = count == 0 || failure_.has_value();
}

// Nothing for a line that is too long: its beginning stays.
std::optional<std::string_view> PathList::raw_line()
{
    std::size_t end = beginning().find(separator_);
    while (end == std::string_view::npos && !at_end_ && beginning().size() <= longest_path) {
        read_part();
        end = beginning().find(separator_);
    }
    const std::string_view line = beginning().substr(0, end);
    if (line.size() > longest_path) {
        return std::nullopt;
    }
    position_ += line.size() + (end == std::string_view::npos ? 0 : 1);
    return line;
}

// Goes behind the end of the line.
PathList::Line PathList::too_long()
{
    Line line{buffer_.substr(position_, shown_of_long_path), long_path()};
    for (;;) {
        const std::size_t end = buffer_.find(separator_, position_);
        position_ = end == std::string::npos ? buffer_.size() : end + 1;
        if (end != std::string::npos || at_end_) {
            return line;
        }
        read_part();
    }
}

std::optional<PathList::Line> PathList::next()
{
    while (position_ < buffer_.size() || !at_end_) {
        const std::optional<std::string_view> line = raw_line();
        if (!line) {
            return too_long();
        }
        if (line->find('\0') != std::string_view::npos) {
            return Line{std::string(*line), no_path()};
        }
        if (!line->empty()) {
            return Line{std::string(*line), std::nullopt};
        }
    }
    if (failure_) {
        return Line{name_, std::exchange(failure_, std::nullopt)};
    }
    return std::nullopt;
}

} // namespace pfsdoc::batch
