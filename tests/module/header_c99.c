/* The public header compiles alone as C99, first in its file and twice, and its inline functions
 * work from C. */
#include "vs_pfs.h"

#include "tests/module/header_languages.h"

int32_t c99_third_byte(VwBlockFile *file)
{
    VwCharStream *stream = VwBlockToChar(file);
    int32_t byte;
    VwCharGet(stream);
    VwCharGet(stream);
    VwCharUnget(stream);
    VwCharGet(stream);
    byte = VwCharGet(stream);
    VwCharToBlock(stream);
    return byte;
}

int32_t c99_file_id_of(const char *start, uint32_t size)
{
    return VwFileIdOf(start, size);
}

void *c99_pointer_again(const void *pointer)
{
    uint32_t words[2];
    VwPointerToWords(pointer, words);
    return VwPointerOfWords(words[0], words[1]);
}

size_t c99_size_of_kind(void)
{
    return sizeof(VwFileKind);
}

size_t c99_size_of_description(void)
{
    return sizeof(VwFileDescription);
}

size_t c99_size_of_tab_stop(void)
{
    return sizeof(VwTabStop);
}
