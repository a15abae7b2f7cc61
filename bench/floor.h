// The floor: what reading a document costs at least, since each character is a call out.
#pragma once

#include "vs_pfs.h"

#ifdef __cplusplus
extern "C" {
#endif

// A routine table as a filter has one, and the words that end each call.
struct FloorTable {
    VwRoutine routines[VW_OUTPUT_ROUTINES];
    uint32_t user1;
    uint32_t user2;
};

// Reads the stream to its end and gives each byte to routine VW_SO_CHARACTER of the table.
VS_PFS_API void FloorRead(VwCharStream *stream, const struct FloorTable *table);

// The refill that the floor uses, so that it can be seen to be the measured module's.
typedef int32_t (*FloorRefill)(VwCharStream *);
VS_PFS_API FloorRefill FloorUses(void);

#ifdef __cplusplus
}
#endif
