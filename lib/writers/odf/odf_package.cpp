#include "lib/writers/odf/odf_package.h"

#include <minizip/zip.h>

#include <new>

namespace pfsdoc::writers {

namespace {

// That 32 bits can tell the size of; all bits set say that 64 others do.
constexpr uint64_t most_short_bytes = 0xFFFFFFFE;
constexpr const char *mimetype_entry = "mimetype";
constexpr std::string_view mimetype = "application/vnd.oasis.opendocument.text";
constexpr uLong first_of_january_1980 = 1U << 21U | 1U << 16U; // as DOS writes dates

OdfPackage::Archive &archive_of(voidpf opaque)
{
    return *static_cast<OdfPackage::Archive *>(opaque);
}

voidpf open_archive(voidpf opaque, const void *, int)
{
    return opaque;
}

uLong read_archive(voidpf, voidpf, void *, uLong)
{
    return 0; // a new archive is never read
}

// Exceptions must not pass through minizip: a short count tells it of the failure.
uLong write_archive(voidpf opaque, voidpf, const void *bytes, uLong size)
{
    OdfPackage::Archive &archive = archive_of(opaque);
    try {
        archive.scratch.write_at(archive.position, {static_cast<const char *>(bytes), size});
    } catch (...) {
        archive.failure = std::current_exception();
        return 0;
    }
    archive.position += size;
    return size;
}

ZPOS64_T tell_archive(voidpf opaque, voidpf)
{
    return archive_of(opaque).position;
}

long seek_archive(voidpf opaque, voidpf, ZPOS64_T offset, int origin)
{
    OdfPackage::Archive &archive = archive_of(opaque);
    switch (origin) {
    case ZLIB_FILEFUNC_SEEK_SET: archive.position = offset; break;
    case ZLIB_FILEFUNC_SEEK_CUR: archive.position += offset; break;
    default: archive.position = archive.scratch.size() + offset; break;
    }
    return 0;
}

int close_archive(voidpf, voidpf)
{
    return 0;
}

int archive_error(voidpf, voidpf)
{
    return 0;
}

} // namespace

OdfPackage::OdfPackage(Scratch &scratch) : archive_{scratch, 0, nullptr}
{
    zlib_filefunc64_def functions{open_archive, read_archive,  write_archive, tell_archive,
                                  seek_archive, close_archive, archive_error, &archive_};
    zip_ = zipOpen2_64("", APPEND_STATUS_CREATE, nullptr, &functions);
    if (zip_ == nullptr) {
        throw std::bad_alloc();
    }
    begin_entry(mimetype_entry, mimetype.size(), false);
    write(mimetype);
}

OdfPackage::~OdfPackage()
{
    if (zip_ != nullptr) {
        zipClose(zip_, nullptr);
    }
}

void OdfPackage::begin(std::string_view entry, uint64_t most_bytes)
{
    end_entry();
    begin_entry(std::string(entry), most_bytes, true);
}

void OdfPackage::write(std::string_view bytes)
{
    check(zipWriteInFileInZip(zip_, bytes.data(), static_cast<unsigned>(bytes.size())));
}

void OdfPackage::finish(Output &output)
{
    end_entry();
    const int result = zipClose(zip_, nullptr);
    zip_ = nullptr;
    check(result);
    archive_.scratch.copy_to(output);
}

void OdfPackage::begin_entry(const std::string &entry, uint64_t most_bytes, bool compressed)
{
    zip_fileinfo info{};
    info.dosDate = first_of_january_1980;
    check(zipOpenNewFileInZip64(zip_, entry.c_str(), &info, nullptr, 0, nullptr, 0, nullptr,
                                compressed ? Z_DEFLATED : 0,
                                compressed ? Z_DEFAULT_COMPRESSION : Z_NO_COMPRESSION,
                                most_bytes > most_short_bytes ? 1 : 0));
}

void OdfPackage::check(int result) const
{
    if (archive_.failure) {
        std::rethrow_exception(archive_.failure);
    }
    if (result != ZIP_OK) {
        throw std::bad_alloc();
    }
}

void OdfPackage::end_entry()
{
    check(zipCloseFileInZip(zip_));
}

} // namespace pfsdoc::writers
