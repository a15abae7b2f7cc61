// Where a document's bytes come from: storage with random access.
//
// Positions have 32 bits, so an input of 4 GiB or more is refused rather than read in part.
// An input that cannot seek (a pipe, a terminal) is first copied to an unnamed temporary file.
// The module takes a failed read for the end of the data, so a source remembers its first
// failure, which is queried afterwards. Test: tests/lib/reading/byte_source_test.cpp.
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

// The smallest size, in bytes, that does not fit into a position.
inline constexpr uint64_t input_size_limit = uint64_t{1} << 32;

// The error for such an input: ErrorKind::limit.
PFSDOC_API Error too_large();

class PFSDOC_API ByteSource {
public:
    virtual ~ByteSource() = default;
    // Reads up to destination.size() bytes at a byte position. Returns the number read, 0 at the
    // end, or nothing on failure.
    virtual std::optional<uint32_t> read_at(uint32_t position, std::span<uint8_t> destination) = 0;
    virtual uint32_t size() const = 0; // in bytes
    // The error of the first failed read; empty if none failed.
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

// Owns its descriptor and closes it. The descriptor must be seekable.
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

// Opens a file by its path; "-" is standard input. Errors: input (also if the temporary file
// cannot be written), limit.
PFSDOC_API Result<std::unique_ptr<ByteSource>> open_source(const std::string &path);
// The same for a descriptor of any type, of which it takes ownership. An input of `limit` bytes
// or more is refused with ErrorKind::limit.
PFSDOC_API Result<std::unique_ptr<ByteSource>> source_of(int descriptor,
                                                         uint64_t limit = input_size_limit);

} // namespace pfsdoc
