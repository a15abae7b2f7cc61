// A document's bytes as the module wants them: a record of operations over a ByteSource.
// Test: tests/lib/reading/byte_source_test.cpp.
#pragma once

#include "pfsdoc/byte_source.h"
#include "vs_pfs.h"

#include <cstdint>

namespace pfsdoc::reading {

// A reading position over a source, which must outlive it. The module opens no further
// files, and a host asked to read one document has no business opening others for it: the
// open operation refuses.
class BlockFile {
public:
    explicit BlockFile(ByteSource &source);
    BlockFile(const BlockFile &) = delete;
    BlockFile &operator=(const BlockFile &) = delete;

    VwBlockFile *get()
    {
        return &operations_;
    }

private:
    static BlockFile &self_of(VwBlockFile *file);
    static int32_t close(VwBlockFile *file);
    static int32_t read(VwBlockFile *file, void *destination, uint32_t count, uint32_t *read);
    static int32_t seek(VwBlockFile *file, uint32_t origin, int32_t offset);
    static int32_t tell(VwBlockFile *file, uint32_t *position);
    static int32_t open(VwBlockFile **result, uint32_t code, const void *argument, uint32_t one);

    VwBlockFile operations_; // first: the module's pointer is a pointer to this object
    ByteSource *source_;     // null once closed
    uint32_t position_ = 0;
};

} // namespace pfsdoc::reading
