// Where a document's bytes come from: storage that is read at positions.
//
// Positions have 32 bits, so an input of 4 GiB or more is refused rather than read in part.
// What cannot be positioned (a pipe, a terminal) is copied to a nameless temporary file
// first. The module takes a failed read for the end of the data, so a source remembers its
// first failure, to be asked about afterwards. Test: tests/lib/reading/byte_source_test.cpp.
#pragma once

#include "pfsdoc/error.h"
#include "pfsdoc/export.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace pfsdoc {

// The first size that does not fit into a position.
inline constexpr uint64_t input_size_limit = uint64_t{1} << 32;

// For such an input; ErrorKind::limit.
PFSDOC_API Error too_large();

class PFSDOC_API ByteSource {
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

class PFSDOC_API MemorySource final : public ByteSource {
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
class PFSDOC_API DescriptorSource final : public ByteSource {
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
PFSDOC_API Result<std::unique_ptr<ByteSource>> open_source(const std::string &path);
// Takes over a descriptor, whatever it is. At most `limit` - 1 bytes are taken.
PFSDOC_API Result<std::unique_ptr<ByteSource>> source_of(int descriptor,
                                                         uint64_t limit = input_size_limit);

} // namespace pfsdoc
