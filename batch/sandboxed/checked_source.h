// A file whose bytes are the same for its digest and for its conversion, although other programs
// may write to it meanwhile.
//
// The first pass reads all of it once, for its SHA-256. A small file stays in memory from then on.
// Of a large one a digest is kept for each block; a block that is read again is compared with its
// digest, and one that differs ends the reading. Test: tests/batch/sandboxed/convert_file_test.cpp.
#pragma once

#include "batch/wire/sha256.h"
#include "lib/base/descriptor.h"
#include "pfsdoc/byte_source.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace pfsdoc::batch {

class CheckedSource final : public ByteSource {
public:
    static constexpr std::size_t block_size = 65536;
    // Larger files are not kept in memory.
    static constexpr std::size_t most_in_memory = 16 * block_size;

    // Reads the file, which is open for positioned reading, to its end; of one that is too large
    // for a source, only the digest is of use. Errors: input, also where it has not the size that
    // it had when it was opened.
    static Result<std::unique_ptr<CheckedSource>> read(base::Descriptor file, uint64_t size);

    const Digest &digest() const
    {
        return digest_;
    }
    std::optional<uint32_t> read_at(uint32_t position, std::span<uint8_t> destination) override;
    uint32_t size() const override
    {
        return static_cast<uint32_t>(size_);
    }
    Status failure() const override
    {
        return failure_;
    }

private:
    // Half of a SHA-256: as hard to meet by chance as the file's own digest.
    using BlockDigest = std::array<uint8_t, 16>;
    struct CachedBlock {
        uint64_t index = UINT64_MAX;
        std::string bytes;
    };
    // The reader, its lookahead and the end of the file each have one of their own.
    static constexpr std::size_t cached_blocks = 4;

    CheckedSource(base::Descriptor file, uint64_t size) : file_(std::move(file)), size_(size) {}
    Status read_all();
    void keep(std::string_view block);
    const std::string *block(uint64_t index);
    static BlockDigest digest_of(std::string_view block);

    base::Descriptor file_;
    uint64_t size_;
    Digest digest_{};
    std::string bytes_; // of a small file
    std::vector<BlockDigest> blocks_;
    std::array<CachedBlock, cached_blocks> cache_;
    std::size_t replaced_next_ = 0; // in cache_
    Status failure_;                // the first
};

} // namespace pfsdoc::batch
