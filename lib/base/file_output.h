// Document output to a file or to standard output, buffered, and whole or not at all where
// that is possible: a named file is written under a temporary name beside it, which nobody else
// may read, and is renamed to its own only when all of it is on the disk.
// Test: tests/lib/base/file_output_test.cpp.
#pragma once

#include "lib/base/descriptor.h"
#include "lib/base/descriptor_output.h"
#include "pfsdoc/error.h"
#include "pfsdoc/output.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <sys/stat.h>

namespace pfsdoc::base {

// A regular file that an output would replace, or would be written into.
struct ExistingFile {
    const struct stat &status;
    int descriptor; // open for reading; below 0 where it cannot be read
};

struct FileOutputOptions {
    // More than that is not written: the output has failed then, with ErrorKind::limit.
    uint64_t max_bytes = UINT64_MAX;
    // Whether a file of that name is to stay, even one that appears before the commit.
    bool keep_existing = false;
    // Is asked about an existing file before anything is made, and again about what is there at the
    // commit; its error says what the file is, "is a document", and refuses it.
    std::function<Status(const ExistingFile &)> guard{};
};

class FileOutput final : public Output {
public:
    // Empty or "-" is standard output; so is /dev/stdout, and /dev/fd/N is the descriptor that it
    // names. A file that is no regular one, such as a device or a pipe, is written to directly.
    static Result<std::unique_ptr<FileOutput>> create(const std::string &path,
                                                      const FileOutputOptions &options = {});
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
        return !commit_failure_.ok() || output_.failed();
    }
    Status failure() const;
    // Whether it failed because it is a pipe that nobody reads any more.
    bool reader_is_gone() const;
    // Where the bytes go until commit.
    DescriptorOutput &stream()
    {
        return output_;
    }
    // Where the bytes are until commit; empty when they are written to the target directly.
    const std::string &temporary_path() const
    {
        return target_.temporary;
    }
    // Hands on what is buffered.
    void flush()
    {
        output_.flush();
    }
    // Finishes the output under its own name. Once, at the end.
    Status commit();

private:
    struct Target {
        std::string shown;     // the name that was given; empty for standard output
        std::string name;      // the same with its links followed
        std::string temporary; // the name it has for now, empty when it is written to directly
        mode_t mode = 0;       // to be had under its own name
    };
    struct Opened {
        Descriptor descriptor;
        Target target;
    };

    FileOutput(Opened opened, const FileOutputOptions &options);

    static Result<Opened> open(const std::string &path, const FileOutputOptions &options);
    static Result<Opened> open_stream(Descriptor descriptor, const std::string &shown,
                                      const FileOutputOptions &options);
    static Result<Opened> open_named(const std::string &shown, const FileOutputOptions &options);
    static Result<Opened> open_beside(Target target);
    Status finish_target();

    Descriptor descriptor_;
    DescriptorOutput output_;
    Target target_;
    FileOutputOptions options_;
    Status commit_failure_;
};

} // namespace pfsdoc::base
