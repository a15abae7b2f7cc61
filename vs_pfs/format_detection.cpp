// Deciding what kind of document the stream holds, by content alone.
//
//   offset 9   "GERBILDOC"  First Choice; the byte after it (18) is the generation
//   offset 641 signature    the Write family, six characters
//   offset 649 variant      '1' or '2', distinguished for two of the signatures only
//
// First Choice is tried first. Past the end of the file bytes read as 0xFF, which match
// nothing. Test: tests/module/format_detection_test.cpp.
#include "formats/first_choice.h"
#include "formats/write_family.h"
#include "vs_pfs/document_headers.h"

#include <string_view>

namespace vs_pfs {
namespace {

using namespace formats;

constexpr int magic_size = choice::magic.size();
constexpr int bytes_before_variant =
    write::variant_offset - (write::signature_offset + write::signature_size);
constexpr int variant_length = 4; // the digit and three bytes that nothing looks at

constexpr int32_t recognised = 0;
constexpr int32_t not_recognised = 1;

void read_text(VwCharStream *stream, char *text, int length)
{
    for (int i = 0; i < length; ++i) {
        text[i] = static_cast<char>(VwCharGet(stream));
    }
}

bool has_choice_magic(VwInstance *instance)
{
    VwCharStream *stream = instance->state.stream;
    char magic[magic_size];
    VwCharSeek(stream, choice::magic_offset, seek_absolute);
    read_text(stream, magic, magic_size);
    // Every document gets a generation, though only First Choice has one.
    const bool third = VwCharGet(stream) == choice::generation_3;
    instance->state.fcVersion = third ? choice_generation_3 : choice_generation_2;
    return std::string_view(magic, magic_size) == choice::magic;
}

FormatType write_type(char variant)
{
    switch (variant) {
    case write::variant_a: return format_write_a;
    case write::variant_b: return format_write_b;
    default: return format_none;
    }
}

// format_none when signature and variant name no kind.
FormatType write_family_type(std::string_view signature, char variant)
{
    if (signature == write::signature_wrd_pc || signature == write::signature_type_2) {
        return write_type(variant);
    }
    if (signature == write::signature_writing_assistant) {
        return format_writing_assistant;
    }
    if (signature == write::signature_professional_1) {
        return format_professional_write_1;
    }
    return signature == write::signature_professional_2 ? format_professional_write_2 : format_none;
}

FormatType detect_write_family(VwInstance *instance)
{
    VwCharStream *stream = instance->state.stream;
    char signature[write::signature_size];
    VwCharSeek(stream, write::signature_offset, seek_absolute);
    read_text(stream, signature, write::signature_size);
    PfsSkipBytes(bytes_before_variant, instance);
    char variant[variant_length];
    read_text(stream, variant, variant_length);
    return write_family_type({signature, write::signature_size}, variant[0]);
}

} // namespace

int32_t PfsGetVersion(VwInstance *instance)
{
    const FormatType type =
        has_choice_magic(instance) ? format_first_choice : detect_write_family(instance);
    if (type == format_none) {
        return not_recognised;
    }
    instance->state.formatType = type;
    VwCharSeek(instance->state.stream, 0, seek_absolute);
    return recognised;
}

} // namespace vs_pfs
