// The host's files, as the module wants them: records of operations over something that has
// bytes at positions.
//
// A ByteSource is the storage: memory, or a file descriptor. A BlockFile is one reading
// position over a source, with the operation table that the module calls. What cannot be
// positioned (a pipe, a terminal) is copied to a nameless temporary file first. Positions of
// the interface have 32 bits, so an input of 4 GiB or more is refused rather than read in
// part; and since the module takes a failed read for the end of the data, the source
// remembers the failure for the host to ask about afterwards. Test:
// tests/host/block_files_test.cpp.
#pragma once

#include "error.h"
#include "vs_pfs.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace pfsdoc {

// The first size that does not fit into a position.
inline constexpr uint64_t input_size_limit = uint64_t{1} << 32;

class ByteSource {
public:
    virtual ~ByteSource() = default;
    // Reads up to destination.size() bytes at a position; the number read, 0 at the end, or
    // nothing when it failed.
    virtual std::optional<uint32_t> read_at(uint32_t position, std::span<uint8_t> destination) = 0;
    virtual uint32_t size() const = 0;
    // The first failed read, if there was one.
    virtual Status failure() const
    {
        return {};
    }
};

class MemorySource final : public ByteSource {
public:
    explicit MemorySource(std::vector<uint8_t> bytes) : bytes_(std::move(bytes)) {}
    std::optional<uint32_t> read_at(uint32_t position, std::span<uint8_t> destination) override;
    uint32_t size() const override
    {
        return static_cast<uint32_t>(bytes_.size());
    }

private:
    std::vector<uint8_t> bytes_;
};

// Owns its descriptor, which must be one that can be positioned.
class DescriptorSource final : public ByteSource {
public:
    DescriptorSource(int descriptor, uint32_t size) : descriptor_(descriptor), size_(size) {}
    ~DescriptorSource() override;
    DescriptorSource(const DescriptorSource &) = delete;
    DescriptorSource &operator=(const DescriptorSource &) = delete;
    std::optional<uint32_t> read_at(uint32_t position, std::span<uint8_t> destination) override;
    uint32_t size() const override
    {
        return size_;
    }
    Status failure() const override;
    int descriptor() const
    {
        return descriptor_;
    }

private:
    int descriptor_;
    uint32_t size_;
    int error_number_ = 0;
};

// Opens a file by its path; "-" is standard input.
Result<std::unique_ptr<ByteSource>> open_source(const std::string &path);
// Takes over a descriptor, whatever it is. At most `limit` - 1 bytes are taken.
Result<std::unique_ptr<ByteSource>> source_of(int descriptor, uint64_t limit = input_size_limit);

// A reading position over a source, which must outlive it. The module opens no further
// files, and a host asked to read one document has no business opening others for it: the
// open operation refuses.
class BlockFile {
public:
    explicit BlockFile(ByteSource &source);
    BlockFile(const BlockFile &) = delete;
    BlockFile &operator=(const BlockFile &) = delete;

    VwBlockFile *get()
    {
        return &operations_;
    }

private:
    static BlockFile &self_of(VwBlockFile *file);
    static int32_t close(VwBlockFile *file);
    static int32_t read(VwBlockFile *file, void *destination, uint32_t count, uint32_t *read);
    static int32_t seek(VwBlockFile *file, uint32_t origin, int32_t offset);
    static int32_t tell(VwBlockFile *file, uint32_t *position);
    static int32_t open(VwBlockFile **result, uint32_t code, const void *argument, uint32_t one);

    VwBlockFile operations_; // first: the module's pointer is a pointer to this object
    ByteSource *source_;     // null once closed
    uint32_t position_ = 0;
};

} // namespace pfsdoc
