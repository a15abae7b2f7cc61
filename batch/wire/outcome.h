// What became of one file, as the process that read it reports it.
//
// That process has read a stranger's bytes, and may be the stranger's by now. So what it says
// is one record of a fixed size, without a pointer, a length to be believed or a text to be
// parsed; whoever receives it checks each member that is used as more than a number. Test:
// tests/batch/run/batch_test.cpp.
#pragma once

#include "batch/wire/sha256.h"
#include "pfsdoc/error.h"
#include "pfsdoc/examine.h"
#include "pfsdoc/identify.h"
#include "pfsdoc/loss_report.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <type_traits>

namespace pfsdoc::batch {

enum class FileStatus : uint32_t {
    converted,
    damaged,        // it is cut short; the part that could be read was converted
    not_a_document, // of a kind known here
    unreadable,
    limit,     // a limit of the output's size, or of the reader's own
    memory,    // --max-memory
    timeout,   // --max-time
    crashed,   // the process that read it died
    name,      // there can be no output of that name
    kept,      // another file has its output's name
    skipped,   // a link or a device inside a folder or an archive: what it leads to is not read
    internal,  // a fault of the program's own
    unchanged, // it is what it was in an earlier run; never in a manifest
    unwritten  // the output cannot be written, which ends the run; never in a manifest
};
inline constexpr std::size_t file_status_count =
    static_cast<std::size_t>(FileStatus::unwritten) + 1;

// As manifests have it: "not_a_document".
std::string_view status_name(FileStatus status);

// A text of bounded size in a record; what does not fit is cut off.
template <std::size_t capacity> class BoundedText {
public:
    void set(std::string_view text)
    {
        bytes_ = {};
        std::copy_n(text.begin(), std::min(text.size(), capacity), bytes_.begin());
    }
    std::string_view get() const
    {
        const auto end = std::find(bytes_.begin(), bytes_.end(), '\0');
        return {bytes_.data(), static_cast<std::size_t>(end - bytes_.begin())};
    }

private:
    std::array<char, capacity> bytes_{};
};

struct BlockCounts {
    uint64_t paragraphs = 0;
    uint64_t characters = 0; // of text, in paragraphs and header and footer lines
    uint64_t page_breaks = 0;
    uint64_t header_lines = 0;
    uint64_t footer_lines = 0;
};

inline constexpr std::size_t loss_count = static_cast<std::size_t>(Loss::character) + 1;
inline constexpr int32_t no_kind = -1;
inline constexpr uint64_t no_offset = UINT64_MAX;

struct Outcome {
    uint64_t job = 0; // its number
    FileStatus status = FileStatus::internal;
    int32_t kind = no_kind; // a DocumentKind
    int32_t confidence = 0; // a Confidence, where there is a kind
    uint32_t has_input_digest = 0;
    uint32_t has_counts = 0; // formats of events have none
    int32_t system_error = 0;
    uint64_t error_offset = no_offset;
    Digest input_digest{};
    Digest output_digest{};
    uint64_t output_size = 0;
    BlockCounts counts;
    std::array<uint64_t, loss_count> losses{};
    uint64_t after_end_offset = no_offset; // of what stands behind the end mark, if anything does
    uint64_t after_end_bytes = 0;
    BoundedText<256> basis;
    BoundedText<512> what;
    BoundedText<512> remedy;

    void set_error(const Error &error);
};
static_assert(std::is_trivially_copyable_v<Outcome>);

constexpr bool has_output(FileStatus status)
{
    return status == FileStatus::converted || status == FileStatus::damaged;
}

// Whether it would be the same again. What depends on the machine and its load would not.
constexpr bool is_final(FileStatus status)
{
    return has_output(status) || status == FileStatus::not_a_document ||
           status == FileStatus::limit;
}

// Whether the file is one of those that a run is for, and was not converted whole.
constexpr bool is_failure(FileStatus status)
{
    return status != FileStatus::converted && status != FileStatus::not_a_document &&
           status != FileStatus::skipped;
}

FileStatus status_of(ErrorKind kind);
Outcome failed_outcome(FileStatus status, const Error &error);
// Whether a record that was received can be used.
bool is_sane(const Outcome &outcome);

} // namespace pfsdoc::batch
