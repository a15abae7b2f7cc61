/* A program in C that loads the module at run time, by its file name, and knows only its
 * table: prints a document's characters and breaks. */
#include "module_events.h"

#include <dlfcn.h>
#include <string.h>

typedef void (*GetRtns)(VwRoutine *table, uint32_t interface_version);
typedef VwInstance *(*AllocProc)(void);
typedef void (*FreeProc)(VwInstance *instance);
typedef void (*LocalUp)(VwBlockFile *file, VwCharStream **stream, VwInstance *instance);
typedef void (*LocalDown)(VwCharStream *stream, VwBlockFile **file, VwInstance *instance);
typedef void (*SetSoRtn)(int32_t id, VwRoutine routine, VwInstance *instance);
typedef int32_t (*StreamOpen)(VwCharStream *stream, int32_t file_id, void *unused,
                              VwFileDescription *description, VwInstance *instance);
typedef int32_t (*StreamRead)(VwCharStream *stream, VwInstance *instance);

static int get_table(const char *path, VwRoutine *table)
{
    GetRtns get_rtns;
    void *module = dlopen(path, RTLD_NOW | RTLD_LOCAL);
    void *symbol = module != NULL ? dlsym(module, "VwGetRtns") : NULL;
    if (symbol == NULL) {
        return 0;
    }
    memcpy(&get_rtns, &symbol, sizeof get_rtns); /* C has no cast from data to functions */
    get_rtns(table, VW_INTERFACE_DO_SPECIAL);
    return 1;
}

static int read_document(const VwRoutine *table, StdioFile *file)
{
    VwCharStream *stream = NULL;
    VwBlockFile *same_file = NULL;
    VwInstance *instance = ((AllocProc)table[VW_ENTRY_ALLOC_PROC])();
    const SetSoRtn set_so_rtn = (SetSoRtn)table[VW_ENTRY_SET_SO_RTN];
    ((LocalUp)table[VW_ENTRY_LOCAL_UP])(&file->operations, &stream, instance);
    set_so_rtn(VW_SO_CHARACTER, (VwRoutine)print_character, instance);
    set_so_rtn(VW_SO_BREAK, (VwRoutine)print_break, instance);
    if (((StreamOpen)table[VW_ENTRY_STREAM_OPEN])(stream, 1012, NULL, NULL, instance) != 0) {
        return 4;
    }
    while (!at_end) {
        ((StreamRead)table[VW_ENTRY_STREAM_READ])(stream, instance);
    }
    ((LocalDown)table[VW_ENTRY_LOCAL_DOWN])(stream, &same_file, instance);
    ((FreeProc)table[VW_ENTRY_FREE_PROC])(instance);
    return same_file == &file->operations ? 0 : 1;
}

int main(int argc, char **argv)
{
    VwRoutine table[VW_ENTRY_SLOTS];
    StdioFile file;
    if (argc != 3 || !get_table(argv[1], table) || !stdio_open(&file, argv[2])) {
        fputs("usage: module_loaded MODULE DOCUMENT\n", stderr);
        return 2;
    }
    return read_document(table, &file);
}
