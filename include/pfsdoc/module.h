// The filter module as the host sees it: the table that VwGetRtns fills, and nothing else.
//
// The table comes either from libvs_pfs.so, loaded at run time, or from the module linked
// into the program. Both are checked in the same way: a module of another build could have a
// saved state of another size, which would otherwise corrupt the heap.
// Test: tests/lib/reading/module_test.cpp.
#pragma once

#include "pfsdoc/error.h"
#include "pfsdoc/export.h"
#include "vs_pfs.h"

#include <cstdint>
#include <memory>
#include <string>

namespace pfsdoc {

// The entry points by their own types, none of them null.
struct ModuleEntries {
    int32_t (*stream_open)(VwCharStream *, int32_t, void *, VwFileDescription *, VwInstance *);
    int32_t (*stream_section)(VwCharStream *, VwInstance *);
    int32_t (*stream_read)(VwCharStream *, VwInstance *);
    int32_t (*stream_tell)(VwCharStream *, uint32_t *);
    int32_t (*stream_seek)(VwCharStream *, const uint32_t *);
    int32_t (*get_info)(void *, uint32_t, VwInstance *);
    void (*get_data)(void *, VwInstance *);
    void (*set_data)(const void *, VwInstance *);
    void (*local_up)(VwBlockFile *, VwCharStream **, VwInstance *);
    void (*local_down)(VwCharStream *, VwBlockFile **, VwInstance *);
    VwInstance *(*alloc_proc)();
    void (*free_proc)(VwInstance *);
    void (*set_user)(uint32_t, uint32_t, VwInstance *);
    void (*set_so_rtn)(int32_t, VwRoutine, VwInstance *);
};

// The type of VwGetRtns.
using GetEntries = void (*)(VwRoutine *table, uint32_t interface_version);

class PFSDOC_API Module {
public:
    // All fail with ErrorKind::internal.

    // The module that is linked into this program.
    static Result<Module> linked();
    // Loads a module. A path without a slash is a file in the current directory: the system's
    // library directories are never searched. Copies of the Module keep it loaded.
    static Result<Module> load(const std::string &path);
    // A module given by its VwGetRtns, which must stay loaded as long as the result is used.
    static Result<Module> from(GetEntries get_entries);

    const ModuleEntries &entries() const
    {
        return entries_;
    }

private:
    explicit Module(const ModuleEntries &entries) : entries_(entries) {}

    ModuleEntries entries_;
    std::shared_ptr<void> library_; // null for the linked-in module
};

// Finds the module to use: `option` if it is not empty, else the environment variable
// VS_PFS_MODULE, else libvs_pfs.so beside the program or in `library_directory` (relative to the
// program's own), else the linked-in module. The value "linked" selects the last.
PFSDOC_API Result<Module> find_module(const std::string &option,
                                      const std::string &library_directory);

} // namespace pfsdoc
