#include "lib/reading/block_file.h"

#include <type_traits>

namespace pfsdoc::reading {

namespace {

constexpr int32_t done = 0;
constexpr int32_t refused = -1;
constexpr uint32_t origin_end = 2;

} // namespace

BlockFile::BlockFile(ByteSource &source)
    : operations_{&close, &read, nullptr, &seek, &tell, nullptr, &open}, source_(&source)
{
    static_assert(std::is_standard_layout_v<BlockFile>, "operations_ must be at its address");
}

BlockFile &BlockFile::self_of(VwBlockFile *file)
{
    return *reinterpret_cast<BlockFile *>(file);
}

int32_t BlockFile::close(VwBlockFile *file)
{
    self_of(file).source_ = nullptr;
    return done;
}

int32_t BlockFile::read(VwBlockFile *file, void *destination, uint32_t count, uint32_t *read)
{
    BlockFile &self = self_of(file);
    *read = 0;
    if (self.source_ == nullptr) {
        return refused;
    }
    const auto got =
        self.source_->read_at(self.position_, {static_cast<uint8_t *>(destination), count});
    if (!got) {
        return refused;
    }
    self.position_ += *got;
    *read = *got;
    return done;
}

int32_t BlockFile::seek(VwBlockFile *file, uint32_t origin, int32_t offset)
{
    BlockFile &self = self_of(file);
    if (origin == 0) {
        self.position_ = static_cast<uint32_t>(offset);
        return done;
    }
    if (origin != origin_end || self.source_ == nullptr) {
        return refused;
    }
    const int64_t position = int64_t{self.source_->size()} + offset;
    if (position < 0 || position >= static_cast<int64_t>(input_size_limit)) {
        return refused;
    }
    self.position_ = static_cast<uint32_t>(position);
    return done;
}

int32_t BlockFile::tell(VwBlockFile *file, uint32_t *position)
{
    *position = self_of(file).position_;
    return done;
}

int32_t BlockFile::open(VwBlockFile **result, uint32_t, const void *, uint32_t)
{
    *result = nullptr;
    return refused;
}

} // namespace pfsdoc::reading
