// Helpers over the host's block file operations, for the host; and opening a file that
// stands beside the document. Test: tests/module/block_file_test.cpp.
#include "vs_pfs/char_stream.h"

#include <cstring>

namespace {

// The failure value of the calls that return a pointer.
template <typename T> T *failed_pointer()
{
    return reinterpret_cast<T *>(static_cast<intptr_t>(-1));
}

constexpr uint32_t open_constant = 1;

bool is_separator(char c)
{
    return c == '\\' || c == '/' || c == ':';
}

// What follows the path's last separator. A separator that is the path's first character
// belongs to the name: the scan stops there without stepping over it.
const char *bare_name(const char *path)
{
    const char *name = path + std::strlen(path);
    while (name != path && !is_separator(*name)) {
        --name;
    }
    return name == path ? name : name + 1;
}

VwBlockFile *open_with(VwBlockFile *file, uint32_t code, const void *argument)
{
    VwBlockFile *opened = nullptr;
    const bool done = file->open(&opened, code, argument, open_constant) == 0;
    return done ? opened : failed_pointer<VwBlockFile>();
}

VwBlockFile *open_beside(VwBlockFile *file, const char *path)
{
    VwOpenBeside beside = {file, {}};
    const char *name = bare_name(path);
    const std::size_t size = std::strlen(name) + 1;
    if (size > sizeof beside.name) {
        return failed_pointer<VwBlockFile>();
    }
    std::memcpy(beside.name, name, size);
    return open_with(file, VW_OPEN_BESIDE, &beside);
}

} // namespace

extern "C" {

int32_t VwBlockRead(VwBlockFile *file, void *destination, uint32_t count, uint16_t *count_read)
{
    uint32_t read = 0;
    const int32_t result = file->read(file, destination, static_cast<uint16_t>(count), &read);
    *count_read = static_cast<uint16_t>(read);
    return result == 0 ? 0 : -1;
}

int32_t VwBlockSeek(VwBlockFile *file, int32_t offset, uint32_t origin)
{
    return file->seek(file, static_cast<uint16_t>(origin), offset) == 0 ? 0 : -1;
}

int32_t VwBlockTell(VwBlockFile *file)
{
    uint32_t position = 0;
    return file->tell(file, &position) == 0 ? static_cast<int32_t>(position) : -1;
}

int32_t VwBlockClose(VwBlockFile *file)
{
    file->close(file);
    return 0;
}

VwBlockFile *VwBlockOpen(VwBlockFile *file, const char *path, uint32_t)
{
    if (*path == '\0') {
        return failed_pointer<VwBlockFile>();
    }
    VwBlockFile *opened = open_with(file, VW_OPEN_PATH, path);
    return opened != failed_pointer<VwBlockFile>() ? opened : open_beside(file, path);
}

VwCharStream *VwCharBlockOpen(VwCharStream *stream, const char *path, uint32_t flags)
{
    VwBlockFile *file = VwBlockOpen(stream->blockFile, path, flags);
    if (file == failed_pointer<VwBlockFile>()) {
        return failed_pointer<VwCharStream>();
    }
    VwCharStream *opened = VwBlockToChar(file);
    return opened != nullptr ? opened : failed_pointer<VwCharStream>();
}

int32_t VwCharBlockClose(VwCharStream *stream)
{
    return VwBlockClose(VwCharToBlock(stream));
}

} // extern "C"
