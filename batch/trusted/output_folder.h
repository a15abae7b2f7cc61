// The folder that a batch writes to. Each output has a temporary name beside its own until it
// is whole and on the disk. The temporary name follows from the file's own, so that one that
// was left behind, by a run that was killed, is replaced by the next run. Test:
// tests/batch/trusted/output_folder_test.cpp.
#pragma once

#include "lib/base/descriptor.h"
#include "pfsdoc/error.h"

#include <cstdint>

#include <string>

namespace pfsdoc::batch {

// An output that is being written; without commit it is gone.
class PendingOutput {
public:
    PendingOutput(base::Descriptor file, std::string temporary, std::string target)
        : file_(std::move(file)), temporary_(std::move(temporary)), target_(std::move(target))
    {
    }
    ~PendingOutput();
    PendingOutput(PendingOutput &&other) noexcept;
    PendingOutput &operator=(PendingOutput &&) = delete;

    // -1 when closed.
    int descriptor() const
    {
        return file_.get();
    }
    // When it is whole.
    void close()
    {
        file_ = base::Descriptor();
    }
    // Gives it its name. What it holds must be on the disk: OutputFolder::sync. Errors as those
    // of OutputFolder::create.
    Status commit();

private:
    base::Descriptor file_;
    std::string temporary_; // empty when it is no longer there
    std::string target_;
};

class OutputFolder {
public:
    // Makes it, and the folders above it, where they are missing.
    static Result<OutputFolder> open(const std::string &path);

    // For a name with "/" between its parts; makes the folders. Errors: output (nothing can be
    // written here), usage (this one cannot, because of its name).
    Result<PendingOutput> create(const std::string &name) const;
    // For reading; not open where it is not there, or is no file of that size.
    base::Descriptor open_existing(const std::string &name, uint64_t size) const;
    // Waits until all that was written is on the disk: for many files at once, since the disk
    // takes about as long for one. 0, or the error's number, of which sync_error makes an Error.
    int sync() const;
    Error sync_error(int error_number) const;
    int descriptor() const
    {
        return folder_.get();
    }

private:
    OutputFolder(std::string path, base::Descriptor folder)
        : path_(std::move(path)), folder_(std::move(folder))
    {
    }

    std::string path_;
    base::Descriptor folder_;
};

} // namespace pfsdoc::batch
