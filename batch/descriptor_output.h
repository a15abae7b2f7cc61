// A worker's output: buffered, limited, and hashed on its way. Test:
// tests/batch/run/batch_test.cpp.
#pragma once

#include "batch/sha256.h"
#include "pfsdoc/error.h"
#include "pfsdoc/output.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace pfsdoc::batch {

class DescriptorOutput final : public Output {
public:
    // The descriptor stays the caller's.
    DescriptorOutput(int descriptor, uint64_t max_bytes);

    // After a failure nothing more is written.
    void write(std::string_view bytes) override;
    void flush();
    bool failed() const
    {
        return system_error_ != 0 || over_limit_;
    }
    Status failure() const;
    // 0 for none.
    int system_error() const
    {
        return system_error_;
    }
    uint64_t size() const
    {
        return size_;
    }
    // Of all that was written; once, at the end.
    Digest finish_digest()
    {
        return sum_.finish();
    }

private:
    int descriptor_;
    uint64_t max_bytes_;
    uint64_t size_ = 0;
    std::string buffer_;
    Sha256 sum_;
    int system_error_ = 0;
    bool over_limit_ = false;
};

} // namespace pfsdoc::batch
