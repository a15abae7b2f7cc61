// The constant tables of the interface: the document kinds that the host knows, and the texts
// that documents and embedded commands are recognised by, each at the offset where hosts expect
// it. Test: tests/module/tables_test.cpp.
#include "formats/commands.h"
#include "formats/first_choice.h"
#include "formats/kinds.h"
#include "formats/write_family.h"
#include "vs_pfs.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <string_view>

namespace {

constexpr uint8_t kind_byte = 120;

constexpr VwFileKind file_kind(const formats::Kind &kind)
{
    VwFileKind entry = {kind.file_id, kind_byte, {}};
    std::copy(kind.name.begin(), kind.name.end(), entry.displayName);
    return entry;
}

// PfsInit as it follows from the formats: texts padded with NULs, and one NUL at the end.
class InitTable {
public:
    constexpr InitTable()
    {
        constexpr std::size_t magic_room = 10;
        constexpr std::size_t word_room = 9;
        constexpr std::size_t signature_room = 7;
        append(formats::choice::magic, magic_room);
        for (const std::string_view word : formats::command_words) {
            append(word, word_room);
        }
        for (const std::string_view signature :
             {formats::write::signature_wrd_pc, formats::write::signature_type_2,
              formats::write::signature_writing_assistant, formats::write::signature_professional_1,
              formats::write::signature_professional_2}) {
            append(signature, signature_room);
        }
    }
    constexpr bool holds(const char (&table)[VW_PFS_INIT_SIZE]) const
    {
        return end_ + 1 == VW_PFS_INIT_SIZE && std::equal(bytes_.begin(), bytes_.end(), table);
    }

private:
    constexpr void append(std::string_view text, std::size_t room)
    {
        std::copy(text.begin(), text.end(), bytes_.begin() + static_cast<std::ptrdiff_t>(end_));
        end_ += room;
    }

    std::array<char, VW_PFS_INIT_SIZE> bytes_{};
    std::size_t end_ = 0;
};

} // namespace

extern "C" constexpr VwFileKind VwPfsOverlayId[VW_FILE_KINDS] = {
    file_kind(formats::kinds[0]), file_kind(formats::kinds[1]), file_kind(formats::kinds[2]),
    file_kind(formats::kinds[3]), file_kind(formats::kinds[4]), file_kind(formats::kinds[5]),
    file_kind(formats::kinds[6])};
static_assert(formats::kinds.size() == VW_FILE_KINDS && sizeof(VwFileKind) == 44);

// A literal, since an array of characters can be initialised by nothing else; the comparison
// below keeps it equal to the formats' own words.
extern "C" constexpr char PfsInit[VW_PFS_INIT_SIZE] = "GERBILDOC\0"
                                                      "N*\0\0\0\0\0\0\0"
                                                      "NEW \0\0\0\0\0"
                                                      "PAGE*\0\0\0\0"
                                                      "JUSTIFY \0"
                                                      "JY \0\0\0\0\0\0"
                                                      "YES*\0\0\0\0\0"
                                                      "Y*\0\0\0\0\0\0\0"
                                                      "NO*\0\0\0\0\0\0"
                                                      "PRINTER \0"
                                                      "P \0\0\0\0\0\0\0"
                                                      "CENTER*\0\0"
                                                      "C*\0\0\0\0\0\0\0"
                                                      "GRAPH \0\0\0"
                                                      "G \0\0\0\0\0\0\0"
                                                      "JOIN \0\0\0\0"
                                                      "J \0\0\0\0\0\0\0"
                                                      "RIGHT*\0\0\0"
                                                      "R*\0\0\0\0\0\0\0"
                                                      "WRD PC\0"
                                                      "TYPE 2\0"
                                                      "IBM   \0"
                                                      "TYPE 3\0"
                                                      "TYPE 4\0";
static_assert(InitTable().holds(PfsInit));
