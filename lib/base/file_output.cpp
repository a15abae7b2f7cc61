#include "lib/base/file_output.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <optional>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace pfsdoc::base {

namespace {

constexpr mode_t private_mode = 0600;
constexpr mode_t new_file_mode = 0666; // less what the user's mask takes away
constexpr mode_t permission_bits = 0777;
constexpr int temporary_name_attempts = 100;

// The mask can only be read by setting it. Programs that make files for people have one thread.
mode_t mode_of_new_files()
{
    const mode_t mask = ::umask(0077);
    ::umask(mask);
    return new_file_mode & ~mask;
}

// Where a rename must go so that a symbolic link stays one.
std::string resolved(const std::string &path)
{
    char *real = ::realpath(path.c_str(), nullptr);
    std::string result = real != nullptr ? real : path;
    std::free(real);
    return result;
}

// The descriptor of this process that a path names. Following the path's links would lead to
// the file behind a redirection, which the caller has opened in a way of his own: to append, say.
std::optional<int> descriptor_named(const std::string &path)
{
    constexpr std::array<const char *, 3> standard = {"/dev/stdin", "/dev/stdout", "/dev/stderr"};
    const auto found = std::find(standard.begin(), standard.end(), path);
    if (found != standard.end()) {
        return static_cast<int>(found - standard.begin());
    }
    for (const std::string_view folder : {"/dev/fd/", "/proc/self/fd/"}) {
        const bool is_in = path.starts_with(folder) && path.size() > folder.size() &&
                           path.size() < folder.size() + 7;
        if (is_in &&
            std::all_of(path.begin() + static_cast<std::ptrdiff_t>(folder.size()), path.end(),
                        [](unsigned char c) { return std::isdigit(c) != 0; })) {
            return std::stoi(path.substr(folder.size()));
        }
    }
    return std::nullopt;
}

Error refused(const std::string &shown, const Error &reason)
{
    const std::string output = shown.empty() ? "the output " : "the output " + shown + " ";
    return {reason.kind, output + reason.what, reason.remedy};
}

Error exists_already()
{
    return {ErrorKind::output, "exists already",
            "leave out --no-clobber to replace it, or name another file with -o"};
}

Error is_unseen(int error_number)
{
    return {ErrorKind::output,
            std::string("cannot be looked at before it is replaced: ") +
                std::strerror(error_number),
            "remove it first, or name another file with -o"};
}

Error leads_nowhere()
{
    return {ErrorKind::output, "is a symbolic link that leads nowhere",
            "remove it, or name another file with -o"};
}

// Whether the guard lets the file of that name be replaced, which must be readable for that.
Status check_existing(const std::string &name, const std::string &shown,
                      const FileOutputOptions &options)
{
    if (!options.guard) {
        return {};
    }
    const Descriptor existing(::open(name.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    struct stat status {};
    if (!existing.is_open() || ::fstat(existing.get(), &status) != 0) {
        return refused(shown, is_unseen(errno));
    }
    const Status reason = options.guard({status, existing.get()});
    return reason.ok() ? Status() : refused(shown, reason.error());
}

int rename_to_new_name(const char *from, const char *to)
{
#ifdef RENAME_NOREPLACE
    if (::renameat2(AT_FDCWD, from, AT_FDCWD, to, RENAME_NOREPLACE) == 0) {
        return 0;
    }
    if (errno != EINVAL && errno != ENOSYS) {
        return -1;
    }
#endif
    // What a file system without such a rename has: a second name is never given to another file.
    return ::link(from, to) == 0 ? ::unlink(from) : -1;
}

} // namespace

FileOutput::FileOutput(Opened opened, const FileOutputOptions &options)
    : descriptor_(std::move(opened.descriptor)), output_(descriptor_.get(), options.max_bytes),
      target_(std::move(opened.target)), options_(options)
{
}

FileOutput::~FileOutput()
{
    if (!target_.temporary.empty()) {
        ::unlink(target_.temporary.c_str());
    }
}

Result<std::unique_ptr<FileOutput>> FileOutput::create(const std::string &path,
                                                       const FileOutputOptions &options)
{
    Result<Opened> opened = open(path, options);
    if (!opened.ok()) {
        return opened.error();
    }
    return Result<std::unique_ptr<FileOutput>>(
        std::unique_ptr<FileOutput>(new FileOutput(std::move(opened.value()), options)));
}

Result<FileOutput::Opened> FileOutput::open(const std::string &path,
                                            const FileOutputOptions &options)
{
    if (path.empty() || path == "-") {
        return open_stream(Descriptor(::fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 0)), "", options);
    }
    if (const std::optional<int> descriptor = descriptor_named(path)) {
        return open_stream(Descriptor(::fcntl(*descriptor, F_DUPFD_CLOEXEC, 0)), path, options);
    }
    return open_named(path, options);
}

Result<FileOutput::Opened> FileOutput::open_stream(Descriptor descriptor, const std::string &shown,
                                                   const FileOutputOptions &options)
{
    struct stat status {};
    if (!descriptor.is_open() || ::fstat(descriptor.get(), &status) != 0) {
        return output_error(errno, shown);
    }
    if (options.guard && S_ISREG(status.st_mode)) {
        const std::string again = "/proc/self/fd/" + std::to_string(descriptor.get());
        const Descriptor existing(::open(again.c_str(), O_RDONLY | O_CLOEXEC));
        if (const Status reason = options.guard({status, existing.get()}); !reason.ok()) {
            return refused(shown, reason.error());
        }
    }
    return Opened{std::move(descriptor), {shown, "", "", 0}};
}

Result<FileOutput::Opened> FileOutput::open_named(const std::string &shown,
                                                  const FileOutputOptions &options)
{
    const std::string name = resolved(shown);
    struct stat status {};
    if (::lstat(name.c_str(), &status) != 0) {
        return errno == ENOENT ? open_beside({shown, name, "", mode_of_new_files()})
                               : Result<Opened>(output_error(errno, shown));
    }
    if (S_ISLNK(status.st_mode)) { // all that lead somewhere were followed
        return refused(shown, leads_nowhere());
    }
    if (!S_ISREG(status.st_mode)) {
        return open_stream(Descriptor(::open(name.c_str(), O_WRONLY | O_CLOEXEC)), shown, options);
    }
    if (options.keep_existing) {
        return refused(shown, exists_already());
    }
    const Status reason = check_existing(name, shown, options);
    return reason.ok() ? open_beside({shown, name, "", status.st_mode & permission_bits})
                       : Result<Opened>(reason.error());
}

// A new file in the target's directory. Its short name fits wherever the target's does.
Result<FileOutput::Opened> FileOutput::open_beside(Target target)
{
    const std::size_t slash = target.name.rfind('/');
    const std::string directory =
        slash == std::string::npos ? "" : target.name.substr(0, slash + 1);
    const std::string stem = directory + ".pfsdoc-" + std::to_string(::getpid()) + "-";
    for (int attempt = 0; attempt < temporary_name_attempts; ++attempt) {
        target.temporary = stem + std::to_string(attempt);
        Descriptor descriptor(::open(target.temporary.c_str(),
                                     O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, private_mode));
        if (descriptor.is_open()) {
            return Opened{std::move(descriptor), std::move(target)};
        }
        if (errno != EEXIST) {
            break;
        }
    }
    return output_error(errno, target.shown);
}

Status FileOutput::failure() const
{
    return commit_failure_.ok() ? output_.failure(target_.shown) : commit_failure_;
}

bool FileOutput::reader_is_gone() const
{
    return output_.error_number() == EPIPE;
}

// What is there now may not be what was there when the output was opened.
Status FileOutput::finish_target()
{
    const char *from = target_.temporary.c_str();
    const char *to = target_.name.c_str();
    struct stat status {};
    if (!options_.keep_existing && ::lstat(to, &status) == 0) {
        if (Status reason = check_existing(target_.name, target_.shown, options_); !reason.ok()) {
            return reason;
        }
    }
    const bool is_written =
        ::fsync(descriptor_.get()) == 0 && ::fchmod(descriptor_.get(), target_.mode) == 0 &&
        (options_.keep_existing ? rename_to_new_name(from, to) : std::rename(from, to)) == 0;
    if (is_written) {
        return {};
    }
    return options_.keep_existing && errno == EEXIST ? refused(target_.shown, exists_already())
                                                     : output_error(errno, target_.shown);
}

Status FileOutput::commit()
{
    output_.flush();
    if (!target_.temporary.empty() && !failed()) {
        commit_failure_ = finish_target();
        if (commit_failure_.ok()) {
            target_.temporary.clear();
        }
    }
    return failure();
}

} // namespace pfsdoc::base
