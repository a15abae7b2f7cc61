#include "lib/reading/diskette_image.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>

namespace pfsdoc::reading {

namespace {

constexpr uint32_t sector_size = 512;
// The first sector and the beginning of the second, where the first allocation table stands.
constexpr std::size_t examined_size = sector_size + 3;
using Start = std::array<uint8_t, examined_size>;

// Offsets in the first sector.
constexpr std::size_t bytes_per_sector_at = 11;
constexpr std::size_t sectors_per_cluster_at = 13;
constexpr std::size_t reserved_sectors_at = 14;
constexpr std::size_t table_count_at = 16;
constexpr std::size_t root_entries_at = 17;
constexpr std::size_t media_at = 21;
constexpr std::size_t sectors_per_table_at = 22;

constexpr uint8_t short_jump = 0xEB;
constexpr uint8_t near_jump = 0xE9;
constexpr uint8_t no_operation = 0x90; // after a short jump
constexpr uint8_t least_media = 0xF0;
constexpr uint8_t table_filler = 0xFF; // after the media byte

// 160, 180, 320, 360, 720, 1200, 1440 and 2880 KB.
constexpr std::array<uint32_t, 8> diskette_sizes = {163840, 184320,  327680,  368640,
                                                    737280, 1228800, 1474560, 2949120};

unsigned word_at(const Start &start, std::size_t offset)
{
    return start[offset] + 256U * start[offset + 1];
}

bool begins_with_jump(const Start &start)
{
    return start[0] == near_jump || (start[0] == short_jump && start[2] == no_operation);
}

bool describes_file_system(const Start &start)
{
    const unsigned bytes_per_sector = word_at(start, bytes_per_sector_at);
    const unsigned tables = start[table_count_at];
    return begins_with_jump(start) && std::has_single_bit(bytes_per_sector) &&
           bytes_per_sector >= 128 && bytes_per_sector <= 4096 &&
           std::has_single_bit(start[sectors_per_cluster_at]) &&
           word_at(start, reserved_sectors_at) > 0 && (tables == 1 || tables == 2) &&
           word_at(start, root_entries_at) > 0 && start[media_at] >= least_media &&
           word_at(start, sectors_per_table_at) > 0;
}

bool has_table_in_second_sector(const Start &start)
{
    return start[sector_size] >= least_media && start[sector_size + 1] == table_filler &&
           start[sector_size + 2] == table_filler;
}

} // namespace

bool is_diskette_image(ByteSource &source)
{
    Start start{};
    if (source.read_at(0, start) != examined_size) {
        return false;
    }
    const bool has_size_of_diskette = std::find(diskette_sizes.begin(), diskette_sizes.end(),
                                                source.size()) != diskette_sizes.end();
    return describes_file_system(start) ||
           (has_size_of_diskette && has_table_in_second_sector(start));
}

} // namespace pfsdoc::reading
