// A complete host in C++ that loads the module at run time: counts a document's characters
// and paragraphs.
//
//   count_events ./libvs_pfs.so LETTER.DOC
#include "vs_pfs.h"

#include <cstdio>
#include <dlfcn.h>

// A block file over stdio: the operations first, then what they need.
struct File : VwBlockFile {
    std::FILE *file;
};

static int32_t file_read(VwBlockFile *self, void *bytes, uint32_t count, uint32_t *got)
{
    std::FILE *file = static_cast<File *>(self)->file;
    *got = static_cast<uint32_t>(std::fread(bytes, 1, count, file));
    return std::ferror(file);
}

static int32_t file_seek(VwBlockFile *self, uint32_t origin, int32_t offset)
{
    const long distance = origin == 0 ? long{static_cast<uint32_t>(offset)} : long{offset};
    return std::fseek(static_cast<File *>(self)->file, distance, origin == 0 ? SEEK_SET : SEEK_END);
}

static int32_t file_tell(VwBlockFile *self, uint32_t *position)
{
    *position = static_cast<uint32_t>(std::ftell(static_cast<File *>(self)->file));
    return 0;
}

static int characters = 0, paragraphs = 0;
static bool at_end = false;

static int32_t on_character(int32_t, uint32_t, uint32_t)
{
    return ++characters;
}

static int32_t on_break(int32_t code, int32_t, uint32_t, uint32_t)
{
    paragraphs += code == VW_BREAK_PARAGRAPH ? 1 : 0;
    at_end = code == VW_BREAK_END_OF_DOCUMENT;
    return 0;
}

// The entry in a slot of the table, called as the function of that name.
#define CALL(slot, name) reinterpret_cast<decltype(&name)>(table[slot])

int main(int argc, char **argv)
{
    void *module = argc == 3 ? dlopen(argv[1], RTLD_NOW) : nullptr;
    void *symbol = module != nullptr ? dlsym(module, "VwGetRtns") : nullptr;
    File file = {{nullptr, file_read, nullptr, file_seek, file_tell, nullptr, nullptr},
                 argc == 3 ? std::fopen(argv[2], "rb") : nullptr};
    if (symbol == nullptr || file.file == nullptr) {
        std::fputs("usage: count_events ./libvs_pfs.so DOCUMENT, both readable\n", stderr);
        return 2;
    }
    VwRoutine table[VW_ENTRY_SLOTS];
    reinterpret_cast<decltype(&VwGetRtns)>(symbol)(table, VW_INTERFACE_DO_SPECIAL);
    VwInstance *doc = CALL(VW_ENTRY_ALLOC_PROC, VwAllocProc)();
    VwCharStream *stream = nullptr;
    CALL(VW_ENTRY_LOCAL_UP, VwLocalUp)(&file, &stream, doc);
    const auto set = CALL(VW_ENTRY_SET_SO_RTN, VwSetSoRtn);
    set(VW_SO_CHARACTER, reinterpret_cast<VwRoutine>(on_character), doc);
    set(VW_SO_BREAK, reinterpret_cast<VwRoutine>(on_break), doc);
    at_end = CALL(VW_ENTRY_STREAM_OPEN, VwStreamOpen)(stream, 1012, nullptr, nullptr, doc) != 0;
    while (!at_end) {
        CALL(VW_ENTRY_STREAM_READ, VwStreamRead)(stream, doc);
    }
    VwBlockFile *same_file = nullptr;
    CALL(VW_ENTRY_LOCAL_DOWN, VwLocalDown)(stream, &same_file, doc);
    CALL(VW_ENTRY_FREE_PROC, VwFreeProc)(doc);
    std::fclose(file.file);
    return std::printf("%d characters in %d paragraphs\n", characters, paragraphs) > 0 ? 0 : 7;
}
