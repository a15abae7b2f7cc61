#include "batch/trusted/earlier_lines.h"

#include "batch/wire/sha256.h"
#include "lib/base/transfers.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>

namespace pfsdoc::batch {

namespace {

constexpr std::size_t read_at_once = 65536;
constexpr std::size_t most_of_one_name = 16; // of runs that were ended one after the other
constexpr uint64_t offset_mask = (uint64_t{1} << 52) - 1;

uint64_t part_of_digest(std::string_view name)
{
    const Digest digest = sha256_of(name);
    uint64_t part = 0;
    std::memcpy(&part, digest.data(), sizeof part);
    return part;
}

// Puts parts of a file together to lines.
class LineReader {
public:
    using Use = std::function<void(std::string_view line, uint64_t offset)>;

    explicit LineReader(const Use &use) : use_(use) {}

    void add(std::string_view part)
    {
        while (!part.empty()) {
            const std::size_t end = part.find('\n');
            append(part.substr(0, end));
            if (end == std::string_view::npos) {
                return;
            }
            end_line();
            part.remove_prefix(end + 1);
        }
    }
    void finish()
    {
        if (size_ > 0) {
            use_("", begin_);
        }
    }

private:
    void append(std::string_view part)
    {
        size_ += part.size();
        if (size_ <= longest_line) {
            line_.append(part);
        }
    }
    void end_line()
    {
        use_(size_ <= longest_line ? line_ : "", begin_);
        begin_ += size_ + 1;
        size_ = 0;
        line_.clear();
    }

    const Use &use_;
    std::string line_; // its beginning, where it is too long
    uint64_t size_ = 0;
    uint64_t begin_ = 0;
};

} // namespace

bool read_lines(int file, const std::function<void(std::string_view line, uint64_t offset)> &use)
{
    LineReader reader(use);
    std::array<char, read_at_once> buffer;
    for (uint64_t offset = 0;;) {
        const ssize_t count = base::read_some_at(file, buffer.data(), buffer.size(), offset);
        if (count <= 0) {
            reader.finish();
            return count == 0;
        }
        reader.add({buffer.data(), static_cast<std::size_t>(count)});
        offset += static_cast<uint64_t>(count);
    }
}

// Where it cannot be read to its end, the lines before that are known.
void EarlierLines::add_file(base::Descriptor file)
{
    static_cast<void>(read_lines(file.get(), [&](std::string_view line, uint64_t offset) {
        if (const std::string output = output_of_(line); !output.empty()) {
            locations_.push_back(
                {part_of_digest(output), offset & offset_mask, files_.size() & 0xFFU, 0});
        }
    }));
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
    while (line.size() <= longest_line) {
        const ssize_t count = base::read_some_at(files_[location.file].get(), buffer.data(),
                                                 buffer.size(), location.offset + line.size());
        if (count <= 0) {
            return {};
        }
        const std::string_view part(buffer.data(), static_cast<std::size_t>(count));
        const std::size_t end = part.find('\n');
        line.append(part.substr(0, end));
        if (end != std::string_view::npos) {
            return line;
        }
    }
    return {};
}

std::pair<std::size_t, std::size_t> EarlierLines::range_of(uint64_t name_digest) const
{
    const auto [begin, end] =
        std::equal_range(locations_.begin(), locations_.end(), Location{name_digest, 0, 0, 0},
                         [](const Location &one, const Location &other) {
                             return one.name_digest < other.name_digest;
                         });
    return {begin - locations_.begin(), end - locations_.begin()};
}

std::vector<std::string> EarlierLines::newest_of(std::size_t begin, std::size_t end) const
{
    std::vector<std::string> lines;
    for (std::size_t i = end; i > begin && lines.size() < most_of_one_name; --i) {
        lines.push_back(line_at(locations_[i - 1]));
    }
    return lines;
}

std::vector<std::string> EarlierLines::find(std::string_view output) const
{
    const auto [begin, end] = range_of(part_of_digest(output));
    return newest_of(begin, end);
}

void EarlierLines::claim(std::string_view output)
{
    if (locations_.empty()) {
        return;
    }
    const auto [begin, end] = range_of(part_of_digest(output));
    for (std::size_t i = begin; i < end; ++i) {
        locations_[i].is_claimed = 1;
    }
}

void EarlierLines::visit_unclaimed(
    const std::function<void(const std::vector<std::string> &lines)> &visit) const
{
    for (std::size_t begin = 0; begin < locations_.size();) {
        const uint64_t digest = locations_[begin].name_digest;
        std::size_t end = begin;
        while (end < locations_.size() && locations_[end].name_digest == digest) {
            ++end;
        }
        if (locations_[begin].is_claimed == 0) {
            visit(newest_of(begin, end));
        }
        begin = end;
    }
}

} // namespace pfsdoc::batch
