// An output on its way to its name. It is written to a temporary file beside that name, which
// only its owner can read, and renamed when it is whole and on the disk.
//
// A file that has the name already is replaced only if its content is what an earlier run put
// there, or if replacing was asked for; and never if it is one of the files to read. Since
// somebody may save that file at any moment, the two change names in one step, and back again if
// the other turns out to have been changed since it was looked at. Test:
// tests/batch/trusted/pending_output_test.cpp.
#pragma once

#include "batch/trusted/entries.h"
#include "batch/trusted/folder_tree.h"
#include "batch/trusted/run_marker.h"
#include "batch/wire/sha256.h"
#include "lib/base/descriptor.h"
#include "pfsdoc/error.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <sys/stat.h>
#include <vector>

namespace pfsdoc::batch {

struct OutputContent {
    uint64_t size = 0;
    Digest sha256{};
    bool operator==(const OutputContent &other) const = default;
};

// Of a regular file; nothing where it cannot be read, or has not the size that is expected.
std::optional<OutputContent> content_of(int file, uint64_t expected_size);

// What a name may be taken from.
struct CommitRule {
    OutputContent made{};             // the output's own content
    std::vector<OutputContent> own{}; // what earlier runs put there
    bool replaces_foreign = false;    // --overwrite
    // Whether the file is one of those to read; asked before a foreign one is replaced.
    std::function<bool(const FileIdentity &)> is_input{};
};

enum class Placement {
    placed,
    kept,       // another file has the name
    kept_input, // and that is one of the files to read
};

// What outputs of one run share.
struct OutputPlace {
    OutputPlace(std::string folder_path, base::Descriptor folder, base::Descriptor folder_lock,
                mode_t mode)
        : path(std::move(folder_path)), lock(std::move(folder_lock)), new_file_mode(mode),
          tree(std::move(folder))
    {
    }

    std::string path; // as it was named
    base::Descriptor lock;
    mode_t new_file_mode;
    FolderTree tree;
    std::optional<RunMarker> marker{}; // taken away when the last output is gone
};

class PendingOutput {
public:
    // For a name with "/" between its parts; makes the folders. Errors: output (nothing can be
    // written here), usage (this one cannot, because of its name).
    static Result<PendingOutput> create(std::shared_ptr<OutputPlace> place,
                                        const std::string &name);
    // Without commit it is gone.
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
    // As messages call it.
    std::string path() const;
    // Gives it its name. What it holds must be on the disk: OutputFolder::sync. Errors as those
    // of create.
    Result<Placement> commit(const CommitRule &rule);

private:
    PendingOutput(std::shared_ptr<OutputPlace> place, base::Descriptor file, std::string folder,
                  std::string temporary, std::string target)
        : place_(std::move(place)), file_(std::move(file)), folder_(std::move(folder)),
          temporary_(std::move(temporary)), target_(std::move(target))
    {
    }

    Result<Placement> place_new(int folder);
    Result<Placement> place_over(int folder, const struct stat &standing, const CommitRule &rule);
    Result<Placement> replace(int folder, const struct stat &standing);
    bool set_mode(int folder, mode_t mode) const;
    void discard();

    std::shared_ptr<OutputPlace> place_;
    base::Descriptor file_;
    std::string folder_;    // in the output folder
    std::string temporary_; // in folder_, as target_; empty when it is no longer there
    std::string target_;
};

Error not_written(const std::string &path, int error_number);
Error kept_file(const std::string &path);
Error kept_input(const std::string &path);

} // namespace pfsdoc::batch
