/* What the programs that use the module share: a block file over stdio, and output routines
 * that print characters and breaks by their numbers, one a line, to be compared with a
 * sample's trace. Included by one file of each program. */
#ifndef MODULE_EVENTS_H
#define MODULE_EVENTS_H

#include <vs_pfs.h>

#include <stdio.h>

/* The operations first, then what they need. */
typedef struct StdioFile {
    VwBlockFile operations;
    FILE *file;
} StdioFile;

static int32_t stdio_read(VwBlockFile *self, void *destination, uint32_t count, uint32_t *got)
{
    FILE *file = ((StdioFile *)self)->file;
    *got = (uint32_t)fread(destination, 1, count, file);
    return ferror(file);
}

static int32_t stdio_seek(VwBlockFile *self, uint32_t origin, int32_t offset)
{
    FILE *file = ((StdioFile *)self)->file;
    return origin == 0 ? fseek(file, (long)(uint32_t)offset, SEEK_SET)
                       : fseek(file, offset, SEEK_END);
}

static int32_t stdio_tell(VwBlockFile *self, uint32_t *position)
{
    *position = (uint32_t)ftell(((StdioFile *)self)->file);
    return 0;
}

static int stdio_open(StdioFile *opened, const char *path)
{
    const VwBlockFile operations = {NULL, stdio_read, NULL, stdio_seek, stdio_tell, NULL, NULL};
    opened->operations = operations;
    opened->file = fopen(path, "rb");
    return opened->file != NULL;
}

static int at_end = 0;

static int32_t print_character(int32_t byte, uint32_t user1, uint32_t user2)
{
    (void)user1, (void)user2;
    return printf("char %02X\n", (unsigned)byte);
}

static int32_t print_break(int32_t code, int32_t zero, uint32_t user1, uint32_t user2)
{
    (void)zero, (void)user1, (void)user2;
    printf("break %d\n", (int)code);
    at_end = code == VW_BREAK_END_OF_DOCUMENT;
    return 0; /* the same read call goes on */
}

#endif
