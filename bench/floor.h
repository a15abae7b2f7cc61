// The floor: the lower bound for reading a document, since each character is a call out.
#pragma once

#include "vs_pfs.h"

#ifdef __cplusplus
extern "C" {
#endif

// A routine table like a filter's, and the user words that end each call.
struct FloorTable {
    VwRoutine routines[VW_OUTPUT_ROUTINES];
    uint32_t user1;
    uint32_t user2;
};

// Reads the stream to its end and passes each byte to the table's routine VW_SO_CHARACTER.
VS_PFS_API void FloorRead(VwCharStream *stream, const struct FloorTable *table);

// The refill that the floor uses, to check that it is the measured module's.
typedef int32_t (*FloorRefill)(VwCharStream *);
VS_PFS_API FloorRefill FloorUses(void);

#ifdef __cplusplus
}
#endif
