// The floor is in a separate library, loaded at run time as the module is, so that no
// compiler sees both sides of a call out. Its stream is the module's: VwCharGet in place,
// and the module's refill.
#include "bench/floor.h"

extern "C" {

void FloorRead(VwCharStream *stream, const FloorTable *table)
{
    for (int32_t byte = VwCharGet(stream); byte >= 0; byte = VwCharGet(stream)) {
        const VwRoutine routine = table->routines[VW_SO_CHARACTER - 1];
        reinterpret_cast<VwOutput1>(routine)(byte, table->user1, table->user2);
    }
}

FloorRefill FloorUses(void)
{
    return vxfilbuf;
}

} // extern "C"
