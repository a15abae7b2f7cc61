/* A program in C that is linked with the module: prints a document's characters and breaks. */
#include "module_events.h"

int main(int argc, char **argv)
{
    StdioFile file;
    VwCharStream *stream = NULL;
    VwBlockFile *same_file = NULL;
    VwInstance *instance = VwAllocProc();
    if (argc != 2 || instance == NULL || !stdio_open(&file, argv[1])) {
        fputs("usage: module_linked DOCUMENT\n", stderr);
        return 2;
    }
    VwLocalUp(&file.operations, &stream, instance);
    VwSetSoRtn(VW_SO_CHARACTER, (VwRoutine)print_character, instance);
    VwSetSoRtn(VW_SO_BREAK, (VwRoutine)print_break, instance);
    if (stream == NULL ||
        VwStreamOpen(stream, VwPfsOverlayId[0].fileId, NULL, NULL, instance) != 0) {
        fputs("module_linked: not a document\n", stderr);
        return 4;
    }
    while (!at_end) {
        VwStreamRead(stream, instance);
    }
    VwLocalDown(stream, &same_file, instance);
    VwFreeProc(instance);
    return same_file == &file.operations && fclose(file.file) == 0 ? 0 : 1;
}
