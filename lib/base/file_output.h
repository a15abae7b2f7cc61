// Document output to a file or to standard output, buffered, and whole or not at all where
// that is possible: a named file is written under a temporary name beside it, and is renamed
// to its own only when all of it is on the disk. Test: tests/lib/base/file_output_test.cpp.
#pragma once

#include "lib/base/descriptor.h"
#include "lib/base/descriptor_output.h"
#include "pfsdoc/error.h"
#include "pfsdoc/output.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace pfsdoc::base {

class FileOutput final : public Output {
public:
    // Empty or "-" is standard output. An existing file that is no regular one, such as a
    // device or a pipe, is written to directly.
    // More than max_bytes are not written: the output has failed then, with ErrorKind::limit.
    static Result<std::unique_ptr<FileOutput>> create(const std::string &path,
                                                      uint64_t max_bytes = UINT64_MAX);
    // Without commit, what was written under a temporary name is gone.
    ~FileOutput() override;
    FileOutput(const FileOutput &) = delete;
    FileOutput &operator=(const FileOutput &) = delete;

    // After a failure nothing more is written; commit reports it.
    void write(std::string_view bytes) override
    {
        output_.write(bytes);
    }
    bool failed() const
    {
        return commit_error_ != 0 || output_.failed();
    }
    Status failure() const;
    // Where the bytes are until commit; empty when they are written to the target directly.
    const std::string &temporary_path() const
    {
        return temporary_;
    }
    // Hands on what is buffered.
    void flush()
    {
        output_.flush();
    }
    // Finishes the output under its own name. Once, at the end.
    Status commit();

private:
    FileOutput(Descriptor descriptor, std::string temporary, std::string target,
               uint64_t max_bytes);

    Descriptor descriptor_;
    DescriptorOutput output_;
    std::string temporary_; // empty when written to directly
    std::string target_;
    int commit_error_ = 0;
};

} // namespace pfsdoc::base
