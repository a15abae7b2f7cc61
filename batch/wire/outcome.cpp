#include "batch/wire/outcome.h"

namespace pfsdoc::batch {

namespace {

constexpr std::array<std::string_view, file_status_count> names = {
    "converted", "damaged", "not_a_document", "unreadable", "limit",    "memory",    "timeout",
    "crashed",   "name",    "kept",           "skipped",    "internal", "unchanged", "unwritten"};

constexpr int32_t kinds_end = static_cast<int32_t>(DocumentKind::first_choice_3) + 1;
constexpr int32_t confidences_end = static_cast<int32_t>(Confidence::signature) + 1;

} // namespace

std::string_view status_name(FileStatus status)
{
    return names[static_cast<std::size_t>(status)];
}

void Outcome::set_error(const Error &error)
{
    what.set(error.what);
    remedy.set(error.remedy);
    error_offset = error.offset.value_or(no_offset);
}

FileStatus status_of(ErrorKind kind)
{
    switch (kind) {
    case ErrorKind::input: return FileStatus::unreadable;
    case ErrorKind::not_a_document: return FileStatus::not_a_document;
    case ErrorKind::damaged: return FileStatus::damaged;
    case ErrorKind::limit: return FileStatus::limit;
    case ErrorKind::output: return FileStatus::unwritten;
    default: return FileStatus::internal;
    }
}

Outcome failed_outcome(FileStatus status, const Error &error)
{
    Outcome outcome;
    outcome.status = status;
    outcome.set_error(error);
    return outcome;
}

bool is_sane(const Outcome &outcome)
{
    return static_cast<std::size_t>(outcome.status) < file_status_count &&
           outcome.kind >= no_kind && outcome.kind < kinds_end && outcome.confidence >= 0 &&
           outcome.confidence < confidences_end &&
           (!has_output(outcome.status) ||
            (outcome.kind != no_kind && outcome.has_input_digest != 0));
}

} // namespace pfsdoc::batch
