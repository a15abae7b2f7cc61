// Opening a document and handing each read call to the reader of its kind.
//
// After open the stream is at the first byte of the text: at 512 in a First Choice
// document, after the first form feed at or after 1024 (and the records that follow it)
// in a Write-family one. Test: tests/module/stream_open_test.cpp.
#include "formats/first_choice.h"
#include "formats/write_family.h"
#include "vs_pfs/document_headers.h"
#include "vs_pfs/formatting.h"
#include "vs_pfs/line_readers.h"

#include <algorithm>
#include <cstring>
#include <iterator>

using namespace vs_pfs;

namespace {

constexpr uint16_t description_flags = 1;

constexpr uint8_t font_value = 24;

// The kind that the host's id names; every unknown id means the last one.
const VwFileKind &file_kind(int32_t file_id)
{
    const VwFileKind *last = std::end(VwPfsOverlayId) - 1;
    return *std::find_if(std::begin(VwPfsOverlayId), last, [file_id](const VwFileKind &kind) {
        return kind.fileId == static_cast<int16_t>(file_id);
    });
}

void describe(int32_t file_id, VwFileDescription *description)
{
    const VwFileKind &kind = file_kind(file_id);
    description->fileKindCode = kind.kind;
    description->fileDescFlags = description_flags;
    std::memcpy(description->fileKindName, kind.displayName, std::strlen(kind.displayName) + 1);
}

void reset(VwCharStream *stream, VwInstance *instance)
{
    std::memset(&instance->state, 0, sizeof instance->state);
    instance->lookahead = {};
    instance->state.stream = stream;
    instance->state.saved.skipFirstReturn = 1;
    instance->state.saved.fontValue = font_value;
}

// A header or footer line's text follows its length byte.
void set_text_positions(const formats::LineTable &length_offsets, FilterState &state)
{
    std::transform(length_offsets.begin(), length_offsets.end(), state.hfTextPos,
                   [](uint32_t offset) { return offset + 1; });
}

void open_choice_document(VwInstance *instance)
{
    FilterState &state = instance->state;
    PfsChoiceHeaderInfo(instance);
    VwCharSeek(state.stream, formats::choice::header_size, seek_absolute);
    state.saved.seekPos = formats::choice::header_size;
    state.saved.skipFirstReturn = 0;
    set_text_positions(formats::choice::line_length_offsets, state);
}

void read_open_end_flag(VwInstance *instance)
{
    VwCharSeek(instance->state.stream, formats::write::flag_offset, seek_absolute);
    if (VwCharGet(instance->state.stream) != 0) {
        instance->state.saved.openEndFlag = 1;
    }
}

void skip_to_form_feed(VwCharStream *stream)
{
    int32_t byte = VwCharGet(stream);
    while (byte != formats::form_feed && byte != end_of_data) {
        byte = VwCharGet(stream);
    }
}

// Leaves the stream at the first byte that begins no record.
void read_leading_records(VwInstance *instance)
{
    VwCharStream *stream = instance->state.stream;
    int32_t byte = VwCharGet(stream);
    while (byte == formats::write::record_mark) {
        MarginsFontRecord(instance);
        byte = VwCharGet(stream);
    }
    if (byte == end_of_data) {
        instance->state.saved.openEndFlag = 1;
    } else {
        VwCharUnget(stream);
    }
}

void open_write_document(VwInstance *instance)
{
    FilterState &state = instance->state;
    PfsWriteHeaderInfo(instance);
    if (state.formatType >= format_professional_write_1) {
        read_open_end_flag(instance);
    }
    set_text_positions(formats::write::line_length_offsets, state);
    VwCharSeek(state.stream, formats::write::header_size, seek_absolute);
    skip_to_form_feed(state.stream);
    read_leading_records(instance);
}

} // namespace

extern "C" {

int32_t VwStreamOpen(VwCharStream *stream, int32_t fileId, void *, VwFileDescription *description,
                     VwInstance *instance)
{
    reset(stream, instance);
    if (description != nullptr) {
        describe(fileId, description);
    }
    if (PfsGetVersion(instance) != 0) {
        return -1;
    }
    if (instance->state.formatType == format_first_choice) {
        open_choice_document(instance);
    } else {
        open_write_document(instance);
    }
    return 0;
}

int32_t VwStreamSection(VwCharStream *, VwInstance *instance)
{
    put_section_start(instance);
    return 0;
}

int32_t VwStreamRead(VwCharStream *stream, VwInstance *instance)
{
    instance->state.stream = stream;
    PutTabStops(instance);
    switch (instance->state.formatType) {
    case format_write_a:
    case format_write_b:
    case format_writing_assistant: read_pfs_line(stream, instance); break;
    case format_professional_write_1:
    case format_professional_write_2: read_pfs_12_line(stream, instance); break;
    case format_first_choice:
        if (instance->state.fcVersion == choice_generation_3) {
            read_choice3_line(stream, instance);
        } else {
            read_choice_line(stream, instance);
        }
        break;
    default: break; // nothing was recognised: there is nothing to read
    }
    return 0;
}

int32_t VwStreamTell(VwCharStream *stream, uint32_t *position)
{
    *position = VwCharTell(stream);
    return 0;
}

int32_t VwStreamSeek(VwCharStream *stream, const uint32_t *position)
{
    return VwCharSeek(stream, *position, seek_absolute);
}

} // extern "C"
