/* A complete host in C, linked with the module: writes a document's characters to standard
 * output, one paragraph a line, in the document's own character set.
 *
 *   read_text LETTER.DOC
 */
#include "vs_pfs.h"

#include <stdio.h>

/* A block file over stdio: the operations first, then what they need. */
typedef struct File {
    VwBlockFile operations;
    FILE *file;
} File;

static int32_t file_read(VwBlockFile *self, void *destination, uint32_t count, uint32_t *got)
{
    FILE *file = ((File *)self)->file;
    *got = (uint32_t)fread(destination, 1, count, file);
    return ferror(file);
}

static int32_t file_seek(VwBlockFile *self, uint32_t origin, int32_t offset)
{
    FILE *file = ((File *)self)->file;
    return origin == 0 ? fseek(file, (long)(uint32_t)offset, SEEK_SET) /* all 32 bits count */
                       : fseek(file, offset, SEEK_END);
}

static int32_t file_tell(VwBlockFile *self, uint32_t *position)
{
    *position = (uint32_t)ftell(((File *)self)->file);
    return 0;
}

static int at_end;

static int32_t on_character(int32_t byte, uint32_t user1, uint32_t user2)
{
    (void)user1, (void)user2;
    return putchar(byte);
}

static int32_t on_break(int32_t code, int32_t zero, uint32_t user1, uint32_t user2)
{
    (void)zero, (void)user1, (void)user2;
    at_end = code == VW_BREAK_END_OF_DOCUMENT;
    return code == VW_BREAK_PARAGRAPH && putchar('\n') == EOF; /* 1 would end this read */
}

int main(int argc, char **argv)
{
    File file = {{NULL, file_read, NULL, file_seek, file_tell, NULL, NULL}, NULL};
    VwInstance *instance = VwAllocProc();
    VwCharStream *stream = NULL;
    int known;
    file.file = argc == 2 ? fopen(argv[1], "rb") : NULL;
    if (file.file == NULL || instance == NULL) {
        fputs("usage: read_text DOCUMENT, which must be readable\n", stderr);
        return 2;
    }
    VwLocalUp(&file.operations, &stream, instance);
    VwSetSoRtn(VW_SO_CHARACTER, (VwRoutine)on_character, instance);
    VwSetSoRtn(VW_SO_BREAK, (VwRoutine)on_break, instance);
    known = stream != NULL && VwStreamOpen(stream, 1012, NULL, NULL, instance) == 0;
    while (known && !at_end) {
        VwStreamRead(stream, instance);
    }
    if (stream != NULL) {
        VwCharToBlock(stream);
    }
    VwFreeProc(instance);
    if (!known) {
        fputs("read_text: not a document of a known kind\n", stderr);
    }
    return fclose(file.file) == 0 && fflush(stdout) == 0 ? (known ? 0 : 4) : 7;
}
