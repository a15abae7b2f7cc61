#include "batch/trusted/pending_output.h"

#include "lib/base/transfers.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>
#include <utility>

namespace pfsdoc::batch {

namespace {

constexpr mode_t private_mode = 0600;
constexpr mode_t mode_bits = 07777;
constexpr std::size_t read_at_once = 65536;
constexpr int most_tries = 4; // while somebody else changes the file that has the name

// Whether an error is about this one name, and not about all that could be written.
bool is_about_name(int error_number)
{
    switch (error_number) {
    case EISDIR:
    case ENOTDIR:
    case EEXIST:
    case ENOTEMPTY:
    case EILSEQ:
    case EINVAL:
    case ELOOP:
    case ENAMETOOLONG: return true;
    default: return false;
    }
}

bool is_full(int error_number)
{
    return error_number == ENOSPC || error_number == EDQUOT;
}

bool is_unsupported(int error_number)
{
    return error_number == EINVAL || error_number == ENOSYS || error_number == EOPNOTSUPP ||
           error_number == EPERM;
}

bool is_same_file(const struct stat &one, const struct stat &other)
{
    return one.st_dev == other.st_dev && one.st_ino == other.st_ino &&
           one.st_mode == other.st_mode && one.st_size == other.st_size &&
           one.st_mtim.tv_sec == other.st_mtim.tv_sec &&
           one.st_mtim.tv_nsec == other.st_mtim.tv_nsec;
}

bool look_at(int folder, const std::string &name, struct stat &status, int flags)
{
    return ::fstatat(folder, name.c_str(), &status, flags) == 0;
}

// 0, or the error's number: EEXIST where the name is taken.
int rename_to_free_name(int folder, const char *from, const char *to)
{
    if (::renameat2(folder, from, folder, to, RENAME_NOREPLACE) == 0) {
        return 0;
    }
    if (!is_unsupported(errno)) {
        return errno;
    }
    if (::linkat(folder, from, folder, to, 0) == 0) {
        ::unlinkat(folder, from, 0);
        return 0;
    }
    if (!is_unsupported(errno)) {
        return errno;
    }
    // The file system knows no links either.
    struct stat status {};
    if (look_at(folder, to, status, AT_SYMLINK_NOFOLLOW)) {
        return EEXIST;
    }
    return ::renameat(folder, from, folder, to) == 0 ? 0 : errno;
}

// The content of a file that is still the one that was looked at.
std::optional<OutputContent> content_standing(int folder, const std::string &name,
                                              const struct stat &standing)
{
    const base::Descriptor file(
        ::openat(folder, name.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    struct stat opened {};
    if (!file.is_open() || ::fstat(file.get(), &opened) != 0 || !is_same_file(opened, standing)) {
        return std::nullopt;
    }
    return content_of(file.get(), static_cast<uint64_t>(standing.st_size));
}

bool is_wanted_size(const CommitRule &rule, uint64_t size)
{
    return rule.made.size == size ||
           std::any_of(rule.own.begin(), rule.own.end(),
                       [size](const OutputContent &one) { return one.size == size; });
}

// By whatever name: what a link leads to counts as well.
bool is_input(int folder, const std::string &name, const CommitRule &rule)
{
    struct stat status {};
    return rule.is_input &&
           ((look_at(folder, name, status, 0) && rule.is_input({status.st_dev, status.st_ino})) ||
            (look_at(folder, name, status, AT_SYMLINK_NOFOLLOW) &&
             rule.is_input({status.st_dev, status.st_ino})));
}

} // namespace

std::optional<OutputContent> content_of(int file, uint64_t expected_size)
{
    std::array<char, read_at_once> buffer;
    Sha256 sum;
    uint64_t size = 0;
    while (size <= expected_size) {
        const ssize_t count = base::read_some_at(file, buffer.data(), buffer.size(), size);
        if (count < 0) {
            return std::nullopt;
        }
        if (count == 0) {
            break;
        }
        sum.update({buffer.data(), static_cast<std::size_t>(count)});
        size += static_cast<uint64_t>(count);
    }
    return size == expected_size ? std::optional(OutputContent{size, sum.finish()}) : std::nullopt;
}

Error not_written(const std::string &path, int error_number)
{
    const std::string why = error_number == ELOOP ? "a folder in it is a symbolic link"
                                                  : std::string(std::strerror(error_number));
    return {is_about_name(error_number) ? ErrorKind::usage : ErrorKind::output,
            path + " cannot be written: " + why,
            is_full(error_number) ? "free some space; the next run continues from here"
                                  : "check the folder and the right to write there"};
}

Error kept_file(const std::string &path)
{
    return {ErrorKind::output,
            path + " was not made by this batch, or was changed since; it was kept",
            "move it away, or replace it with --overwrite"};
}

Error kept_input(const std::string &path)
{
    return {ErrorKind::output, path + " is one of the files to read; it was kept",
            "name another folder with -o"};
}

// A folder that was removed since it was last used is made again.
Result<PendingOutput> PendingOutput::create(std::shared_ptr<OutputPlace> place,
                                            const std::string &name)
{
    auto [folder, target] = split_name(name);
    for (bool is_again = false;; is_again = true) {
        const std::string temporary = place->marker->next_temporary_name();
        const int opened = place->tree.open(folder, FolderTree::Missing::made);
        base::Descriptor file(opened < 0
                                  ? -1
                                  : ::openat(opened, temporary.c_str(),
                                             O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC,
                                             private_mode));
        if (file.is_open()) {
            return PendingOutput(std::move(place), std::move(file), std::move(folder), temporary,
                                 std::move(target));
        }
        if (is_again || opened < 0 || errno != ENOENT) {
            return not_written(place->path + "/" + name, errno);
        }
        place->tree.forget();
    }
}

PendingOutput::~PendingOutput()
{
    discard();
}

PendingOutput::PendingOutput(PendingOutput &&other) noexcept
    : place_(std::move(other.place_)), file_(std::move(other.file_)),
      folder_(std::move(other.folder_)), temporary_(std::exchange(other.temporary_, std::string())),
      target_(std::move(other.target_))
{
}

void PendingOutput::discard()
{
    if (temporary_.empty()) {
        return;
    }
    const int folder = place_->tree.open(folder_, FolderTree::Missing::refused);
    const bool is_gone = folder >= 0 && ::unlinkat(folder, temporary_.c_str(), 0) == 0;
    if (!is_gone && errno != ENOENT) {
        place_->marker->keep();
    }
    temporary_.clear();
}

std::string PendingOutput::path() const
{
    return place_->path + "/" + (folder_.empty() ? "" : folder_ + "/") + target_;
}

bool PendingOutput::set_mode(int folder, mode_t mode) const
{
    const base::Descriptor file(
        ::openat(folder, temporary_.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    return file.is_open() && ::fchmod(file.get(), mode & mode_bits) == 0;
}

Result<Placement> PendingOutput::commit(const CommitRule &rule)
{
    const int folder = place_->tree.open(folder_, FolderTree::Missing::refused);
    for (int tries = 0; folder >= 0 && tries < most_tries; ++tries) {
        struct stat standing {};
        const bool is_taken = look_at(folder, target_, standing, AT_SYMLINK_NOFOLLOW);
        if (!is_taken && errno != ENOENT) {
            return not_written(path(), errno);
        }
        Result<Placement> placed =
            is_taken ? place_over(folder, standing, rule) : place_new(folder);
        if (!placed.ok() || placed.value() != Placement::kept) {
            return placed;
        }
        // Another look: it may have been changed since the first.
        struct stat now {};
        if (is_taken && look_at(folder, target_, now, AT_SYMLINK_NOFOLLOW) &&
            is_same_file(now, standing)) {
            return placed;
        }
    }
    return folder < 0 ? Result<Placement>(not_written(path(), errno)) : Placement::kept;
}

// Kept where somebody else was there first.
Result<Placement> PendingOutput::place_new(int folder)
{
    const int error_number = set_mode(folder, place_->new_file_mode)
                                 ? rename_to_free_name(folder, temporary_.c_str(), target_.c_str())
                                 : errno;
    if (error_number == EEXIST) {
        return Placement::kept;
    }
    if (error_number != 0) {
        return not_written(path(), error_number);
    }
    temporary_.clear();
    return Placement::placed;
}

Result<Placement> PendingOutput::place_over(int folder, const struct stat &standing,
                                            const CommitRule &rule)
{
    if (S_ISDIR(standing.st_mode)) {
        return not_written(path(), EISDIR);
    }
    if (S_ISREG(standing.st_mode) &&
        is_wanted_size(rule, static_cast<uint64_t>(standing.st_size))) {
        const std::optional<OutputContent> content = content_standing(folder, target_, standing);
        if (content == rule.made) {
            discard();
            return Placement::placed;
        }
        if (content && std::find(rule.own.begin(), rule.own.end(), *content) != rule.own.end()) {
            return replace(folder, standing);
        }
    }
    if (!rule.replaces_foreign) {
        return Placement::kept;
    }
    return is_input(folder, target_, rule) ? Placement::kept_input : replace(folder, standing);
}

// What was there has the temporary name afterwards, for a last look before it is removed.
Result<Placement> PendingOutput::replace(int folder, const struct stat &standing)
{
    const mode_t mode = S_ISREG(standing.st_mode) ? standing.st_mode : place_->new_file_mode;
    if (!set_mode(folder, mode)) {
        return not_written(path(), errno);
    }
    const char *temporary = temporary_.c_str();
    const bool is_exchanged =
        ::renameat2(folder, temporary, folder, target_.c_str(), RENAME_EXCHANGE) == 0;
    struct stat replaced {};
    if (!is_exchanged && !is_unsupported(errno)) {
        return errno == ENOENT ? Result<Placement>(Placement::kept) : not_written(path(), errno);
    }
    const bool is_it =
        look_at(folder, is_exchanged ? temporary_ : target_, replaced, AT_SYMLINK_NOFOLLOW) &&
        is_same_file(replaced, standing);
    if (is_exchanged && is_it) {
        discard();
        return Placement::placed;
    }
    if (is_exchanged) {
        ::renameat2(folder, temporary, folder, target_.c_str(), RENAME_EXCHANGE);
        return Placement::kept;
    }
    if (is_it && ::renameat(folder, temporary, folder, target_.c_str()) != 0) {
        return not_written(path(), errno);
    }
    temporary_ = is_it ? std::string() : temporary_;
    return is_it ? Placement::placed : Placement::kept;
}

} // namespace pfsdoc::batch
