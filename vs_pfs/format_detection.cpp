// Deciding what kind of document the stream holds, by content alone.
//
//   offset 9   "GERBILDOC"  First Choice; the byte after it (18) is the generation
//   offset 641 signature    the Write family, six characters
//   offset 649 variant      '1' or '2', told apart for two of the signatures only
//
// First Choice is tried first. Past the end of the file bytes read as 0xFF, which match
// nothing. Test: tests/module/format_detection_test.cpp.
#include "document_headers.h"
#include "tables.h"

#include <cstring>

namespace vs_pfs {
namespace {

constexpr uint32_t magic_position = 9;
constexpr uint32_t signature_position = 641;
constexpr int signature_length = init_signature_size - 1;
constexpr int bytes_before_variant = 2;
constexpr int variant_length = 4; // the digit and three bytes that nothing looks at

constexpr int32_t recognised = 0;
constexpr int32_t not_recognised = 1;

// Signatures in the order of PfsInit.
enum Signature : int {
    signature_wrd_pc,
    signature_type_2,
    signature_ibm,
    signature_type_3,
    signature_type_4,
    signature_none
};

void read_text(VwCharStream *stream, char *text, int length)
{
    for (int i = 0; i < length; ++i) {
        text[i] = static_cast<char>(VwCharGet(stream));
    }
}

bool has_choice_magic(VwInstance *instance)
{
    VwCharStream *stream = instance->state.stream;
    char magic[init_magic_size];
    VwCharSeek(stream, magic_position, seek_absolute);
    read_text(stream, magic, init_magic_size);
    // Every document gets a generation, though only First Choice has one.
    const bool third = VwCharGet(stream) == '3';
    instance->state.fcVersion = third ? choice_generation_3 : choice_generation_2;
    return std::memcmp(magic, PfsInit, init_magic_size) == 0;
}

Signature find_signature(const char *text)
{
    int index = 0;
    while (index < init_signatures &&
           std::memcmp(text, init_signature(index), signature_length) != 0) {
        ++index;
    }
    return static_cast<Signature>(index);
}

// format_none when signature and variant name no kind.
FormatType write_family_type(Signature signature, char variant)
{
    switch (signature) {
    case signature_wrd_pc:
    case signature_type_2:
        return variant == '1' ? format_write_a : variant == '2' ? format_write_b : format_none;
    case signature_ibm: return format_writing_assistant;
    case signature_type_3: return format_professional_write_1;
    case signature_type_4: return format_professional_write_2;
    default: return format_none;
    }
}

FormatType detect_write_family(VwInstance *instance)
{
    VwCharStream *stream = instance->state.stream;
    char signature[signature_length];
    VwCharSeek(stream, signature_position, seek_absolute);
    read_text(stream, signature, signature_length);
    PfsSkipBytes(bytes_before_variant, instance);
    char variant[variant_length];
    read_text(stream, variant, variant_length);
    return write_family_type(find_signature(signature), variant[0]);
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
