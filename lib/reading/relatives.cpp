#include "lib/reading/relatives.h"

#include "formats/first_choice.h"
#include "formats/write_family.h"

#include <array>
#include <cstdint>
#include <string>

namespace pfsdoc::reading {

namespace {

namespace choice = formats::choice;
namespace write = formats::write;

constexpr std::size_t examined_size = write::variant_offset;

} // namespace

std::string_view relative_of_documents(ByteSource &source)
{
    std::array<uint8_t, examined_size> bytes{};
    const uint32_t count = source.read_at(0, bytes).value_or(0);
    const std::string start(reinterpret_cast<const char *>(bytes.data()), count);
    for (const Relative &relative : relatives) {
        if (start.size() > choice::magic_offset &&
            start.substr(choice::magic_offset).starts_with(relative.magic)) {
            return relative.name;
        }
    }
    for (const std::string_view signature : {write::signature_wrd_pc, write::signature_type_2}) {
        if (start.size() > write::signature_offset &&
            start.substr(write::signature_offset).starts_with(signature)) {
            return "a file of PFS: WRITE";
        }
    }
    return {};
}

} // namespace pfsdoc::reading
