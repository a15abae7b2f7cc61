/* A complete host in C that keeps its own data for each document: tells what kind each file is
 * before it is opened, and counts its characters and paragraphs. Nothing is global.
 *
 *   host_data LETTER.DOC MEMO.PW
 */
#include "vs_pfs.h"

#include <stdio.h>

/* One document: the block file's operations first, then what they need, then what is counted. */
typedef struct Document {
    VwBlockFile operations;
    FILE *file;
    unsigned long characters, paragraphs;
    int at_end;
} Document;

static int32_t file_read(VwBlockFile *self, void *destination, uint32_t count, uint32_t *got)
{
    FILE *file = ((Document *)self)->file;
    *got = (uint32_t)fread(destination, 1, count, file);
    return ferror(file);
}

static int32_t file_seek(VwBlockFile *self, uint32_t origin, int32_t offset)
{
    FILE *file = ((Document *)self)->file;
    return origin == 0 ? fseek(file, (long)(uint32_t)offset, SEEK_SET) /* all 32 bits count */
                       : fseek(file, offset, SEEK_END);
}

static int32_t file_tell(VwBlockFile *self, uint32_t *position)
{
    *position = (uint32_t)ftell(((Document *)self)->file);
    return 0;
}

static int32_t on_character(int32_t byte, uint32_t user1, uint32_t user2)
{
    Document *document = (Document *)VwPointerOfWords(user1, user2);
    (void)byte;
    ++document->characters;
    return 0;
}

static int32_t on_break(int32_t code, int32_t zero, uint32_t user1, uint32_t user2)
{
    Document *document = (Document *)VwPointerOfWords(user1, user2);
    (void)zero;
    document->paragraphs += code == VW_BREAK_PARAGRAPH;
    document->at_end = code == VW_BREAK_END_OF_DOCUMENT;
    return 0;
}

static const char *name_of(int32_t file_id)
{
    size_t i = 0;
    while (i + 1 < VW_FILE_KINDS && VwPfsOverlayId[i].fileId != file_id) {
        ++i;
    }
    return VwPfsOverlayId[i].displayName;
}

/* Whether the document could be read. */
static int count(Document *document, int32_t file_id)
{
    VwInstance *instance = VwAllocProc();
    VwCharStream *stream = NULL;
    uint32_t words[2];
    int is_open = 0;
    if (instance != NULL) {
        VwLocalUp(&document->operations, &stream, instance);
    }
    if (stream != NULL) {
        VwPointerToWords(document, words);
        VwSetUser(words[0], words[1], instance);
        VwSetSoRtn(VW_SO_CHARACTER, (VwRoutine)on_character, instance);
        VwSetSoRtn(VW_SO_BREAK, (VwRoutine)on_break, instance);
        is_open = VwStreamOpen(stream, file_id, NULL, NULL, instance) == 0;
        while (is_open && !document->at_end) {
            VwStreamRead(stream, instance);
        }
        VwCharToBlock(stream);
    }
    VwFreeProc(instance);
    return is_open;
}

static int report(const char *path)
{
    Document document = {{NULL, file_read, NULL, file_seek, file_tell, NULL, NULL}, NULL, 0, 0, 0};
    char start[VW_KIND_BYTES];
    int32_t file_id;
    int is_read = 0;
    document.file = fopen(path, "rb");
    if (document.file == NULL) {
        perror(path);
        return 0;
    }
    file_id = VwFileIdOf(start, (uint32_t)fread(start, 1, sizeof start, document.file));
    if (file_id == 0) {
        printf("%s: not for this filter\n", path);
    } else if ((is_read = count(&document, file_id)) != 0) {
        printf("%s: %s, %lu characters in %lu paragraphs\n", path, name_of(file_id),
               document.characters, document.paragraphs);
    }
    return fclose(document.file) == 0 && is_read;
}

int main(int argc, char **argv)
{
    int i, all = argc > 1;
    for (i = 1; i < argc; ++i) {
        all &= report(argv[i]);
    }
    return fflush(stdout) != 0 ? 7 : all ? 0 : 1;
}
