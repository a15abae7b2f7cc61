// Output to a descriptor: buffered, limited, and able to say whether all of it was written.
// Test: tests/lib/base/descriptor_output_test.cpp.
#pragma once

#include "pfsdoc/error.h"
#include "pfsdoc/output.h"

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

namespace pfsdoc::base {

// Why a file cannot be opened for output, or written; no name: "the output".
Error output_error(int error_number, const std::string &name = {});

// How far an output is.
struct OutputState {
    uint64_t size = 0;
    int error_number = 0;
    bool over_limit = false;
};

class DescriptorOutput final : public Output {
public:
    // Is shown every stretch of the output just before it is written: to hash it, say.
    using Observer = std::function<void(std::string_view bytes)>;

    // The descriptor stays the caller's. More than max_bytes are not written: the output has
    // failed then, with ErrorKind::limit.
    explicit DescriptorOutput(int descriptor, uint64_t max_bytes = UINT64_MAX,
                              Observer observer = {});
    DescriptorOutput(const DescriptorOutput &) = delete;
    DescriptorOutput &operator=(const DescriptorOutput &) = delete;

    // After a failure nothing more is written.
    void write(std::string_view bytes) override;
    // Hands on what is buffered. Without it, that is lost.
    void flush();

    // Where another process wrote what is missing here: with nothing buffered, what there would be
    // to say, and says it from then on.
    OutputState state() const
    {
        return {size_, error_number_, over_limit_};
    }
    void resume(const OutputState &state)
    {
        size_ = state.size;
        error_number_ = state.error_number;
        over_limit_ = state.over_limit;
    }
    int descriptor() const
    {
        return descriptor_;
    }

    // The bytes within the limit, written or buffered.
    uint64_t size() const
    {
        return size_;
    }
    bool failed() const
    {
        return error_number_ != 0 || over_limit_;
    }
    // Of the system's first error, 0 for none.
    int error_number() const
    {
        return error_number_;
    }
    // The name stands for the output in the message.
    Status failure(const std::string &name = {}) const;

private:
    void hand_on(std::string_view bytes);

    int descriptor_;
    uint64_t max_bytes_;
    Observer observer_;
    uint64_t size_ = 0;
    std::string buffer_;
    int error_number_ = 0;
    bool over_limit_ = false;
};

} // namespace pfsdoc::base
