// The table of entry points, the information queries, and the small entry points around
// the instance record. Opening and reading are in stream_open.cpp.
// Test: tests/module/entry_points_test.cpp.
#include "vs_pfs/filter_interface.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <iterator>

using namespace vs_pfs;

namespace {

template <typename Function> VwRoutine routine(Function *function)
{
    return reinterpret_cast<VwRoutine>(function);
}

// The host's buffer need not be aligned, so every result is copied in.
template <typename T> int32_t answer(void *result, const T &value)
{
    std::memcpy(result, &value, sizeof value);
    return 1;
}

int32_t answer_number(void *result, uint16_t number)
{
    return answer(result, number);
}

int32_t answer_file_ids(void *result)
{
    uint16_t ids[VW_FILE_KINDS];
    std::transform(std::begin(VwPfsOverlayId), std::end(VwPfsOverlayId), std::begin(ids),
                   [](const VwFileKind &kind) { return kind.fileId; });
    return answer(result, ids);
}

// Fixed values, for the host to use.
constexpr uint16_t host_size_4 = 400;
constexpr uint16_t host_size_5 = 440;
constexpr char build_date[] = "Oct 12 1995";
constexpr char build_time[] = "16:59:28";
constexpr uint32_t marker_word = 0x12345678;

} // namespace

extern "C" {

void VwGetRtns(VwRoutine *table, uint32_t interfaceVersion)
{
    const VwRoutine always[] = {
        routine(VwStreamOpen),
        routine(VwStreamSection),
        routine(VwStreamRead),
        routine(VwStreamTell),
        routine(VwStreamSeek),
        routine(VwGetInfo),
        routine(VwGetData),
        routine(VwSetData),
        routine(VwLocalUp),
        routine(VwLocalDown),
        routine(VwAllocProc),
        routine(VwFreeProc),
        routine(VwSetUser),
        routine(VwSetSoRtn),
        routine(VwStreamClose),
        nullptr,
        nullptr,
        routine(VwStreamReadRecord),
    };
    static_assert(std::size(always) == VW_ENTRY_DO_SPECIAL);
    std::copy(std::begin(always), std::end(always), table);
    if (static_cast<uint16_t>(interfaceVersion) >= VW_INTERFACE_DO_SPECIAL) {
        table[VW_ENTRY_DO_SPECIAL] = routine(VwDoSpecial);
    }
}

int32_t VwGetInfo(void *result, uint32_t query, VwInstance *)
{
    switch (static_cast<uint16_t>(query)) {
    case VW_INFO_SAVED_STATE_SIZE: return answer_number(result, sizeof(SavedState));
    case VW_INFO_FILTER_STATE_SIZE: return answer_number(result, sizeof(FilterState));
    case VW_INFO_INIT_SIZE: return answer_number(result, sizeof PfsInit);
    case VW_INFO_SIZE_4: return answer_number(result, host_size_4);
    case VW_INFO_SIZE_5: return answer_number(result, host_size_5);
    case VW_INFO_FILE_KINDS: return answer_number(result, VW_FILE_KINDS);
    case VW_INFO_FILE_IDS: return answer_file_ids(result);
    case VW_INFO_BUILD_DATE: return answer(result, build_date);
    case VW_INFO_BUILD_TIME: return answer(result, build_time);
    case VW_INFO_ZERO_10:
    case VW_INFO_ZERO_11: return answer_number(result, 0);
    case VW_INFO_MARKER: return answer(result, marker_word);
    default: return 0;
    }
}

VwInstance *VwAllocProc(void)
{
    return static_cast<VwInstance *>(std::malloc(sizeof(VwInstance)));
}

void VwFreeProc(VwInstance *instance)
{
    std::free(instance);
}

void VwSetUser(uint32_t user1, uint32_t user2, VwInstance *instance)
{
    instance->user1 = user1;
    instance->user2 = user2;
}

void VwSetSoRtn(int32_t id, VwRoutine output_routine, VwInstance *instance)
{
    const int16_t slot_id = static_cast<int16_t>(id);
    if (slot_id < 1 || slot_id > VW_OUTPUT_ROUTINES) {
        return;
    }
    instance->routines[output_slot(slot_id)] =
        output_routine != nullptr ? output_routine : routine(SODummy);
}

void VwLocalUp(VwBlockFile *file, VwCharStream **stream, VwInstance *instance)
{
    *stream = VwBlockToChar(file);
    std::fill(std::begin(instance->routines), std::end(instance->routines), routine(SODummy));
    instance->lookahead = {};
}

void VwLocalDown(VwCharStream *stream, VwBlockFile **file, VwInstance *)
{
    *file = VwCharToBlock(stream);
}

void VwGetData(void *buffer, VwInstance *instance)
{
    std::memcpy(buffer, &instance->state.saved, sizeof instance->state.saved);
}

void VwSetData(const void *buffer, VwInstance *instance)
{
    std::memcpy(&instance->state.saved, buffer, sizeof instance->state.saved);
}

void VwStreamClose(VwCharStream *, VwInstance *) {}

void VwStreamReadRecord(VwCharStream *, void *, VwInstance *) {}

void VwDoSpecial(void *, void *, void *, void *, void *, VwInstance *) {}

void VwGetSectionData(void *, VwInstance *) {}

void VwSetSectionData(const void *, VwInstance *) {}

int32_t SODummy(int32_t first)
{
    return first;
}

void *SUAlloc(uint32_t size)
{
    return std::calloc(1, size);
}

} // extern "C"
