#include "bench/memory_file.h"

#include <algorithm>
#include <cstring>

namespace bench {

namespace {

constexpr uint32_t origin_end = 2;
constexpr int32_t refused = -1;

MemoryFile &self_of(VwBlockFile *file)
{
    return *static_cast<MemoryFile *>(file);
}

int32_t close_file(VwBlockFile *)
{
    return 0;
}

int32_t read_file(VwBlockFile *file, void *destination, uint32_t count, uint32_t *count_read)
{
    MemoryFile &self = self_of(file);
    const auto size = static_cast<uint32_t>(self.bytes.size());
    const uint32_t available = size - std::min(size, self.position);
    *count_read = std::min(count, available);
    if (*count_read != 0) {
        std::memcpy(destination, self.bytes.data() + self.position, *count_read);
        self.position += *count_read;
        self.bytes_read += *count_read;
        ++self.reads;
    }
    return 0;
}

int32_t seek_file(VwBlockFile *file, uint32_t origin, int32_t offset)
{
    MemoryFile &self = self_of(file);
    const auto from = origin == origin_end ? static_cast<uint32_t>(self.bytes.size()) : 0U;
    self.position = from + static_cast<uint32_t>(offset);
    ++self.seeks;
    return 0;
}

int32_t tell_file(VwBlockFile *file, uint32_t *position)
{
    *position = self_of(file).position;
    return 0;
}

int32_t open_file(VwBlockFile **, uint32_t, const void *, uint32_t)
{
    return refused;
}

} // namespace

MemoryFile::MemoryFile(std::string_view contents)
    : VwBlockFile{close_file, read_file, nullptr, seek_file, tell_file, nullptr, open_file},
      bytes(contents)
{
}

} // namespace bench
