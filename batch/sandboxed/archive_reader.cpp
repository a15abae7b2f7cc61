// libarchive reads the archive out of memory that the file is mapped to, so that nothing but
// computing and one pipe is needed once the sandbox is closed. A file that another program cuts
// meanwhile ends this process, which is what it is for.
//
// Only the filters that run inside the process are asked for: libarchive would start programs
// for the others.
#include "batch/sandboxed/archive_reader.h"

#include "batch/sandboxed/limits.h"
#include "batch/sandboxed/zip_directory.h"
#include "batch/wire/archive_messages.h"

#include <algorithm>
#include <archive.h>
#include <archive_entry.h>
#include <array>
#include <cerrno>
#include <clocale>
#include <csignal>
#include <cstdlib>
#include <ctime>
#include <memory>
#include <new>
#include <optional>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace pfsdoc::batch {

namespace {

constexpr std::size_t part_size = 65536;
static_assert(part_size <= longest_message);

struct FreeArchive {
    void operator()(archive *opened) const
    {
        ::archive_read_free(opened);
    }
};

using Archive = std::unique_ptr<archive, FreeArchive>;

// The file in memory, and how far libarchive is in it.
struct MappedFile {
    const char *bytes = nullptr;
    la_int64_t size = 0;
    la_int64_t position = 0;
};

la_ssize_t read_part(archive *, void *data, const void **part)
{
    MappedFile &file = *static_cast<MappedFile *>(data);
    const la_int64_t count = std::min<la_int64_t>(part_size, file.size - file.position);
    *part = file.bytes + file.position;
    file.position += count;
    return static_cast<la_ssize_t>(count);
}

la_int64_t skip_part(archive *, void *data, la_int64_t request)
{
    MappedFile &file = *static_cast<MappedFile *>(data);
    const la_int64_t count = std::clamp<la_int64_t>(request, 0, file.size - file.position);
    file.position += count;
    return count;
}

la_int64_t seek_part(archive *, void *data, la_int64_t offset, int whence)
{
    MappedFile &file = *static_cast<MappedFile *>(data);
    const la_int64_t from = whence == SEEK_SET ? 0 : whence == SEEK_CUR ? file.position : file.size;
    if (offset < -from || offset > file.size - from) {
        return ARCHIVE_FATAL;
    }
    file.position = from + offset;
    return file.position;
}

bool map(int descriptor, MappedFile &file)
{
    struct stat status {};
    if (::fstat(descriptor, &status) != 0) {
        return false;
    }
    const auto size = static_cast<std::size_t>(status.st_size);
    if (size == 0) {
        return true;
    }
    void *mapped = ::mmap(nullptr, size, PROT_READ, MAP_PRIVATE, descriptor, 0);
    file.bytes = static_cast<const char *>(mapped);
    file.size = status.st_size;
    return mapped != MAP_FAILED;
}

// What cannot be allocated is no damage. Otherwise libarchive has no words that hold for all
// formats.
ArchiveOutcome fault_of(archive *opened)
{
    return ::archive_errno(opened) == ENOMEM ? ArchiveOutcome::memory : ArchiveOutcome::damaged;
}

// A stream that is cut in its compression is an archive all the same. EILSEQ is what libarchive has
// on Linux for bytes of no format that it knows.
ArchiveOutcome failure_to_open(archive *reader)
{
    return ::archive_errno(reader) == EILSEQ ? ArchiveOutcome::not_an_archive : fault_of(reader);
}

Archive new_reader()
{
    Archive opened(::archive_read_new());
    archive *reader = opened.get();
    if (reader == nullptr) {
        throw std::bad_alloc();
    }
    ::archive_read_support_filter_gzip(reader);
    ::archive_read_support_filter_bzip2(reader);
    ::archive_read_support_filter_xz(reader);
    ::archive_read_support_filter_zstd(reader);
    ::archive_read_support_format_tar(reader);
    ::archive_read_support_format_zip(reader);
    ::archive_read_set_read_callback(reader, read_part);
    ::archive_read_set_skip_callback(reader, skip_part);
    ::archive_read_set_seek_callback(reader, seek_part);
    return opened;
}

class MemberSender {
public:
    MemberSender(archive *opened, std::string_view bytes, int output,
                 const ArchiveSettings &settings)
        : archive_(opened), bytes_(bytes), output_(output), settings_(settings)
    {
    }

    // How the archive ended, or nothing where nobody listens any more.
    std::optional<ArchiveOutcome> send_all();

private:
    bool send_member(archive_entry *entry);
    bool send_repeated();
    ArchiveOutcome send_content(archive_entry *entry);
    ArchiveOutcome send_parts();

    archive *archive_;
    std::string_view bytes_; // of the archive
    int output_;
    const ArchiveSettings &settings_;
};

std::string_view name_of(archive_entry *entry)
{
    const char *name = ::archive_entry_pathname(entry);
    if (name == nullptr) {
        name = ::archive_entry_pathname_utf8(entry);
    }
    return std::string_view(name != nullptr ? name : "").substr(0, longest_member_name);
}

ArchiveOutcome MemberSender::send_parts()
{
    std::array<char, part_size> part{};
    uint64_t sent = 0;
    for (;;) {
        const la_ssize_t count = ::archive_read_data(archive_, part.data(), part.size());
        if (count <= 0) {
            return count == 0 ? ArchiveOutcome::whole : fault_of(archive_);
        }
        const auto length = static_cast<std::size_t>(count);
        sent += length;
        if (sent > settings_.max_input) {
            return ArchiveOutcome::too_large;
        }
        if (!send_bytes(output_, MessageKind::bytes, {part.data(), length})) {
            return ArchiveOutcome::reader_ended;
        }
    }
}

ArchiveOutcome MemberSender::send_content(archive_entry *entry)
{
    const auto type = ::archive_entry_filetype(entry);
    if (type == AE_IFLNK || ::archive_entry_hardlink(entry) != nullptr) {
        return ArchiveOutcome::link;
    }
    if (type != AE_IFREG && type != 0) {
        return ArchiveOutcome::special;
    }
    if (::archive_entry_is_encrypted(entry) != 0) {
        return ArchiveOutcome::encrypted;
    }
    const la_int64_t size = ::archive_entry_size(entry);
    if (size > 0 && static_cast<uint64_t>(size) > settings_.max_input) {
        return ArchiveOutcome::too_large;
    }
    return send_parts();
}

bool MemberSender::send_member(archive_entry *entry)
{
    if (::archive_entry_filetype(entry) == AE_IFDIR) {
        return true;
    }
    return send_bytes(output_, MessageKind::member, name_of(entry)) &&
           send_end(output_, MessageKind::member_end, send_content(entry));
}

// What libarchive leaves out: it reads a member once.
bool MemberSender::send_repeated()
{
    for (const std::string_view name : repeated_entries(bytes_)) {
        if (!send_bytes(output_, MessageKind::member, name.substr(0, longest_member_name)) ||
            !send_end(output_, MessageKind::member_end, ArchiveOutcome::repeated)) {
            return false;
        }
    }
    return true;
}

std::optional<ArchiveOutcome> MemberSender::send_all()
{
    for (;;) {
        archive_entry *entry = nullptr;
        const int result = ::archive_read_next_header(archive_, &entry);
        if (result == ARCHIVE_EOF) {
            const bool is_zip =
                (::archive_format(archive_) & ARCHIVE_FORMAT_BASE_MASK) == ARCHIVE_FORMAT_ZIP;
            return !is_zip || send_repeated() ? std::optional(ArchiveOutcome::whole) : std::nullopt;
        }
        if (result < ARCHIVE_WARN) {
            return fault_of(archive_);
        }
        if (static_cast<uint64_t>(::archive_filter_bytes(archive_, 0)) > settings_.max_archive) {
            return ArchiveOutcome::too_many_bytes;
        }
        if (!send_member(entry)) {
            return std::nullopt;
        }
    }
}

// The archive is in memory, so it may be closed, and does not count. All that this process writes
// goes into a pipe.
void prepare_process(int archive, const MappedFile &file, const ArchiveSettings &settings,
                     uint64_t own)
{
    static_cast<void>(std::signal(SIGPIPE, SIG_DFL));
    ::close(archive);
    // Names in UTF-8 shall come as they are. Both read files, so they cannot be left for later.
    static_cast<void>(std::setlocale(LC_CTYPE, "C.UTF-8"));
    ::tzset();
    ::prctl(PR_SET_NAME, "pfsdoc-archive");
    own += static_cast<uint64_t>(file.size);
    limit_resources({own + std::min(settings.max_memory, UINT64_MAX - own), 0});
}

// Why there is no archive, or how it ended; nothing where nobody listens any more.
std::optional<ArchiveOutcome> send_archive(MappedFile &file, int output,
                                           const ArchiveSettings &settings)
{
    try {
        const Archive reader = new_reader();
        ::archive_read_set_callback_data(reader.get(), &file);
        if (::archive_read_open1(reader.get()) != ARCHIVE_OK) {
            return failure_to_open(reader.get());
        }
        const std::string_view bytes(file.bytes, static_cast<std::size_t>(file.size));
        return MemberSender(reader.get(), bytes, output, settings).send_all();
    } catch (const std::bad_alloc &) {
        return ArchiveOutcome::memory;
    }
}

} // namespace

void run_archive_reader(int archive, int output, const ArchiveSettings &settings,
                        const ReaderStart &start)
{
    MappedFile file;
    const bool is_mapped = map(archive, file);
    prepare_process(archive, file, settings, start.address_space);
    std::optional<ArchiveOutcome> outcome = ArchiveOutcome::not_an_archive;
    if (!start.walls.enter().ok()) {
        outcome = ArchiveOutcome::no_sandbox;
    } else if (is_mapped) {
        outcome = send_archive(file, output, settings);
    }
    if (outcome) {
        send_end(output, MessageKind::archive_end, *outcome);
    }
    ::_exit(EXIT_SUCCESS);
}

} // namespace pfsdoc::batch
