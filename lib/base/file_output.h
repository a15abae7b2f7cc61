// Document output to a file or to standard output, buffered, and whole or not at all where
// that can be had: a named file is written under a temporary name beside it, and takes its
// own name only when everything is on the disk. Test: tests/lib/base/file_output_test.cpp.
#pragma once

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

    // After a failure nothing more is written; commit tells of it.
    void write(std::string_view bytes) override;
    bool failed() const
    {
        return error_number_ != 0 || over_limit_;
    }
    Status failure() const;
    // Where the bytes are until commit; empty when they are written to their place directly.
    const std::string &temporary_path() const
    {
        return temporary_;
    }
    // Hands on what is buffered.
    void flush();
    // Brings all that was written to where it belongs. Once, at the end.
    Status commit();

private:
    FileOutput(int descriptor, std::string temporary, std::string target, uint64_t max_bytes);
    void note_failure(int error_number);

    int descriptor_;
    std::string temporary_; // empty when written to directly
    std::string target_;
    std::string buffer_;
    uint64_t max_bytes_;
    uint64_t bytes_ = 0; // that were to be written
    int error_number_ = 0;
    bool over_limit_ = false;
};

} // namespace pfsdoc::base
