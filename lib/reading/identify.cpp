#include "pfsdoc/identify.h"

#include "formats/first_choice.h"
#include "formats/write_family.h"
#include "lib/base/printable.h"
#include "lib/reading/kind_tables.h"
#include "lib/reading/relatives.h"

#include <algorithm>
#include <array>
#include <optional>

namespace pfsdoc {

namespace {

namespace choice = formats::choice;
namespace write = formats::write;

constexpr std::size_t examined_size = write::variant_offset + 1;

// A signature without a kind belongs to both kinds of PFS: WRITE: the variant digit decides.
struct Signature {
    std::string_view text;
    std::optional<DocumentKind> kind;
};
constexpr std::array<Signature, 5> signatures = {{
    {write::signature_wrd_pc, std::nullopt},
    {write::signature_type_2, std::nullopt},
    {write::signature_writing_assistant, DocumentKind::writing_assistant},
    {write::signature_professional_1, DocumentKind::professional_write_1},
    {write::signature_professional_2, DocumentKind::professional_write_2},
}};

// The examined start of a file; empty where the file ends.
class Start {
public:
    explicit Start(std::string bytes) : bytes_(std::move(bytes)) {}

    std::string_view at(std::size_t offset, std::size_t size) const
    {
        return offset < bytes_.size() ? std::string_view(bytes_).substr(offset, size)
                                      : std::string_view();
    }
    bool has(std::size_t offset, std::string_view text) const
    {
        return at(offset, text.size()) == text;
    }
    std::size_t size() const
    {
        return bytes_.size();
    }

private:
    std::string bytes_;
};

std::string found_at(std::string_view text, std::size_t offset)
{
    return std::string("\"").append(text).append("\" at ").append(std::to_string(offset));
}

// A byte in quotes if it can be read, in hexadecimal if not; nothing where the file ends.
std::string byte_text(std::string_view byte)
{
    if (byte.empty()) {
        return "no byte";
    }
    const char c = byte.front();
    return c > ' ' && c < 0x7F ? std::string("\"").append(byte).append("\"")
                               : "byte 0x" + base::hex_byte(static_cast<unsigned char>(c));
}

Error not_a_document(const std::string &what)
{
    return {ErrorKind::not_a_document, what,
            "only documents of PFS: WRITE, Professional Write, IBM Writing Assistant and "
            "PFS: First Choice can be read"};
}

Identity choice_identity(const Start &start)
{
    const bool is_3 =
        start.at(choice::generation_offset, 1) == std::string_view(&choice::generation_3, 1);
    return {is_3 ? DocumentKind::first_choice_3 : DocumentKind::first_choice_2,
            found_at(choice::magic, choice::magic_offset) + ", generation " +
                byte_text(start.at(choice::generation_offset, 1)) + " at " +
                std::to_string(choice::generation_offset)};
}

// The two kinds of PFS: WRITE.
Result<Identity> variant_identity(const Start &start, const Signature &signature)
{
    const std::string_view variant = start.at(write::variant_offset, 1);
    const std::string basis = found_at(signature.text, write::signature_offset) + ", variant " +
                              byte_text(variant) + " at " + std::to_string(write::variant_offset);
    if (variant == std::string_view(&write::variant_a, 1)) {
        return Identity{DocumentKind::write_a, basis};
    }
    if (variant == std::string_view(&write::variant_b, 1)) {
        return Identity{DocumentKind::write_b, basis};
    }
    return not_a_document("is marked as PFS: WRITE, but of an unknown variant (" + basis + ")");
}

Error unknown(const Start &start)
{
    if (start.size() == 0) {
        return not_a_document("is empty");
    }
    for (const reading::Relative &relative : reading::relatives) {
        if (start.has(choice::magic_offset, relative.magic)) {
            return not_a_document("is " + std::string(relative.name) + " (" +
                                  found_at(relative.magic, choice::magic_offset) +
                                  "), not a document");
        }
    }
    return not_a_document("is not a supported document");
}

Result<Identity> identify_start(const Start &start)
{
    if (start.has(choice::magic_offset, choice::magic)) {
        return choice_identity(start);
    }
    for (const Signature &signature : signatures) {
        if (start.has(write::signature_offset, signature.text)) {
            return signature.kind ? Identity{*signature.kind,
                                             found_at(signature.text, write::signature_offset)}
                                  : variant_identity(start, signature);
        }
    }
    return unknown(start);
}

} // namespace

int32_t file_id(DocumentKind kind)
{
    return reading::facts_of(kind).file_id;
}

std::string_view display_name(DocumentKind kind)
{
    return reading::facts_of(kind).name;
}

Result<Identity> identify(ByteSource &source)
{
    std::array<uint8_t, examined_size> bytes{};
    const std::optional<uint32_t> count = source.read_at(0, bytes);
    if (!count) {
        const Status failure = source.failure();
        return failure.ok() ? Error{ErrorKind::input, "cannot be read", ""} : failure.error();
    }
    return identify_start(Start(std::string(reinterpret_cast<const char *>(bytes.data()), *count)));
}

} // namespace pfsdoc
