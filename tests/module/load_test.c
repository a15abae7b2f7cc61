/* Loads the built module as a host does, resolves all its symbols at once, and makes one query
 * through its table of entry points.
 *   load_test MODULE */
#include "vs_pfs.h"

#include <stdio.h>
#include <string.h>

#ifdef _WIN32
#include <windows.h>
#define dlopen(path, flags) ((void *)LoadLibraryA(path))
#define dlsym(module, name) ((void *)GetProcAddress((HMODULE)(module), name))
#define dlclose(module) (!FreeLibrary((HMODULE)(module)))
#define dlerror() "the system refuses it"
#else
#include <dlfcn.h>
#endif

typedef void (*GetRtns)(VwRoutine *table, uint32_t interfaceVersion);
typedef int32_t (*GetInfo)(void *result, uint32_t query, VwInstance *instance);

int main(int argc, char **argv)
{
    VwRoutine table[VW_ENTRY_SLOTS];
    uint32_t marker = 0;
    GetRtns get_rtns;
    void *symbol;
    void *module = argc == 2 ? dlopen(argv[1], RTLD_NOW | RTLD_LOCAL) : NULL;
    if (module == NULL) {
        fprintf(stderr, "load_test: %s\n", argc == 2 ? dlerror() : "one argument, the module");
        return 1;
    }
    symbol = dlsym(module, "VwGetRtns");
    if (symbol == NULL) {
        fprintf(stderr, "load_test: %s\n", dlerror());
        return 1;
    }
    memcpy(&get_rtns, &symbol, sizeof get_rtns);
    get_rtns(table, VW_INTERFACE_DO_SPECIAL);
    if (((GetInfo)table[VW_ENTRY_GET_INFO])(&marker, VW_INFO_MARKER, NULL) != 1 ||
        marker != 0x12345678u) {
        fprintf(stderr, "load_test: the module does not answer with its marker\n");
        return 1;
    }
    return dlclose(module);
}
