#include "odf_package.h"

#include <minizip/zip.h>

#include <algorithm>
#include <cstring>
#include <new>

namespace pfsdoc {

namespace {

constexpr std::string_view mimetype_entry = "mimetype";
constexpr std::string_view mimetype = "application/vnd.oasis.opendocument.text";
constexpr uLong first_of_january_1980 = 1U << 21U | 1U << 16U; // as DOS writes dates

OdfPackage::Memory &memory_of(voidpf opaque)
{
    return *static_cast<OdfPackage::Memory *>(opaque);
}

voidpf open_memory(voidpf opaque, const char *, int)
{
    return opaque;
}

uLong read_memory(voidpf, voidpf, void *, uLong)
{
    return 0; // a new archive is never read
}

// Exceptions must not pass through minizip: a short count tells it of the failure.
uLong write_memory(voidpf opaque, voidpf, const void *bytes, uLong size)
{
    OdfPackage::Memory &memory = memory_of(opaque);
    try {
        const std::size_t end = memory.position + size;
        memory.bytes.resize(std::max(memory.bytes.size(), end));
    } catch (...) {
        return 0;
    }
    std::memcpy(memory.bytes.data() + memory.position, bytes, size);
    memory.position += size;
    return size;
}

long tell_memory(voidpf opaque, voidpf)
{
    return static_cast<long>(memory_of(opaque).position);
}

long seek_memory(voidpf opaque, voidpf, uLong offset, int origin)
{
    OdfPackage::Memory &memory = memory_of(opaque);
    switch (origin) {
    case ZLIB_FILEFUNC_SEEK_SET: memory.position = offset; break;
    case ZLIB_FILEFUNC_SEEK_CUR: memory.position += offset; break;
    default: memory.position = memory.bytes.size() + offset; break;
    }
    return 0;
}

int close_memory(voidpf, voidpf)
{
    return 0;
}

int memory_error(voidpf, voidpf)
{
    return 0;
}

void check(int result)
{
    if (result != ZIP_OK) {
        throw std::bad_alloc();
    }
}

} // namespace

OdfPackage::OdfPackage()
{
    zlib_filefunc_def functions{open_memory, read_memory,  write_memory, tell_memory,
                                seek_memory, close_memory, memory_error, &memory_};
    archive_ = zipOpen2("", APPEND_STATUS_CREATE, nullptr, &functions);
    if (archive_ == nullptr) {
        throw std::bad_alloc();
    }
    begin_entry(mimetype_entry, false);
    write(mimetype_entry, mimetype);
}

OdfPackage::~OdfPackage()
{
    if (archive_ != nullptr) {
        zipClose(archive_, nullptr);
    }
}

void OdfPackage::write(std::string_view entry, std::string_view bytes)
{
    if (entry != entry_) {
        end_entry();
        begin_entry(entry, true);
    }
    check(zipWriteInFileInZip(archive_, bytes.data(), static_cast<unsigned>(bytes.size())));
}

void OdfPackage::finish(Output &output)
{
    end_entry();
    const int result = zipClose(archive_, nullptr);
    archive_ = nullptr;
    check(result);
    output.write(memory_.bytes);
}

void OdfPackage::begin_entry(std::string_view entry, bool compressed)
{
    entry_ = entry;
    zip_fileinfo info{};
    info.dosDate = first_of_january_1980;
    check(zipOpenNewFileInZip(archive_, entry_.c_str(), &info, nullptr, 0, nullptr, 0, nullptr,
                              compressed ? Z_DEFLATED : 0,
                              compressed ? Z_DEFAULT_COMPRESSION : Z_NO_COMPRESSION));
}

void OdfPackage::end_entry()
{
    check(zipCloseFileInZip(archive_));
}

} // namespace pfsdoc
