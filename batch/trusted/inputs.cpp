// Puts folders, lists and archives in a row. At most one of each is open: a list that names a
// folder that holds an archive.
#include "batch/trusted/inputs.h"

#include "batch/trusted/archives.h"
#include "batch/trusted/folders.h"
#include "batch/trusted/lists.h"

#include <fcntl.h>

namespace pfsdoc::batch {

namespace {

Error too_large(uint64_t size, uint64_t max_input)
{
    return {ErrorKind::limit,
            "has " + std::to_string(size) + " bytes, and " + std::to_string(max_input) +
                " are allowed",
            "allow more with --max-input"};
}

// The last part of what a command line names; nothing of "." and "..", which name no more than
// what is in them.
std::string own_name(const std::string &path)
{
    const std::size_t end = path.find_last_not_of('/');
    if (end == std::string::npos) {
        return "";
    }
    const std::size_t slash = path.rfind('/', end);
    const std::size_t start = slash == std::string::npos ? 0 : slash + 1;
    const std::string last = path.substr(start, end + 1 - start);
    return last == ".." ? "" : safe_name(last, Separators::slash);
}

class AllInputs : public BatchInputs {
public:
    explicit AllInputs(const InputOptions &options)
        : options_(options), left_out_{identity_of(options.exclude), options.is_own,
                                       options.is_own_name},
          names_(options.extension)
    {
        for (const std::string &path : options.reserved) {
            names_.reserve(path);
        }
    }
    std::optional<BatchInput> next() override;

private:
    struct Named {
        std::string path;
        std::string name; // not made unique yet
        std::optional<Error> error;
    };

    std::optional<Named> next_path();
    std::optional<Named> next_of_lists();
    std::optional<BatchInput> next_of_open();
    std::optional<BatchInput> open_path(const Named &named);
    std::optional<BatchInput> use(FoundFile found);

    InputOptions options_;
    LeftOut left_out_;
    NameSet names_;
    std::size_t next_path_ = 0;
    std::size_t next_list_ = 0;
    std::unique_ptr<PathList> list_;
    std::unique_ptr<FolderWalk> folder_;
    std::unique_ptr<ArchiveMembers> archive_;
};

std::optional<AllInputs::Named> AllInputs::next_of_lists()
{
    while (list_ != nullptr || next_list_ < options_.list_files.size()) {
        if (list_ == nullptr) {
            list_ = std::make_unique<PathList>(options_.list_files[next_list_++], options_.wait);
        }
        if (std::optional<PathList::Line> line = list_->next()) {
            std::string name = safe_name(line->path, Separators::slash);
            return Named{std::move(line->path), std::move(name), std::move(line->error)};
        }
        list_.reset();
    }
    return std::nullopt;
}

std::optional<AllInputs::Named> AllInputs::next_path()
{
    if (next_path_ < options_.paths.size()) {
        const std::string &path = options_.paths[next_path_++];
        return Named{path, own_name(path), std::nullopt};
    }
    return next_of_lists();
}

// Nothing for an archive: its members come next.
std::optional<BatchInput> AllInputs::use(FoundFile found)
{
    BatchInput &input = found.input;
    if (found.is_archive) {
        archive_ = std::make_unique<ArchiveMembers>(input.file, std::move(input.name),
                                                    std::move(input.source), options_, names_);
        return std::nullopt;
    }
    if (!input.error && input.size > options_.max_input) {
        const uint64_t size = input.size;
        input = failed_input(std::move(input.name), std::move(input.source),
                             too_large(size, options_.max_input));
        input.size = size;
    }
    return std::move(input);
}

// Nothing for a folder or an archive: what is in it comes next.
std::optional<BatchInput> AllInputs::open_path(const Named &named)
{
    if (named.error) {
        return failed_input(names_.unique(named.name), named.path, *named.error);
    }
    Result<Entry> opened = open_entry(AT_FDCWD, named.path, Links::followed);
    if (!opened.ok()) {
        return failed_input(names_.unique(named.name), named.path, opened.error());
    }
    Entry &entry = opened.value();
    if (!entry.is_folder && left_out_.has(entry)) {
        return std::nullopt;
    }
    if (!entry.is_folder) {
        const bool is_archive = is_archive_name(named.path);
        return use({{is_archive ? names_.unique_folder(named.name) : names_.unique(named.name),
                     named.path, std::move(entry.file), entry.size},
                    is_archive});
    }
    std::string name = named.name.empty() ? "" : names_.unique_folder(named.name);
    folder_ = std::make_unique<FolderWalk>(std::move(entry.file), std::move(name), named.path,
                                           left_out_, names_);
    return std::nullopt;
}

// Nothing when what is open has come to its end.
std::optional<BatchInput> AllInputs::next_of_open()
{
    while (archive_ != nullptr || folder_ != nullptr) {
        if (archive_ != nullptr) {
            if (std::optional<BatchInput> member = archive_->next()) {
                return member;
            }
            archive_.reset();
        } else if (std::optional<FoundFile> found = folder_->next()) {
            if (std::optional<BatchInput> input = use(std::move(*found))) {
                return input;
            }
        } else {
            folder_.reset();
        }
    }
    return std::nullopt;
}

std::optional<BatchInput> AllInputs::next()
{
    for (;;) {
        if (std::optional<BatchInput> input = next_of_open()) {
            return input;
        }
        const std::optional<Named> named = next_path();
        if (!named) {
            return std::nullopt;
        }
        if (std::optional<BatchInput> input = open_path(*named)) {
            return input;
        }
    }
}

} // namespace

BatchInput failed_input(std::string name, std::string source, Error error)
{
    FileStatus status = status_of(error.kind);
    if (error.kind == ErrorKind::damaged) {
        status = FileStatus::unreadable;
    } else if (error.kind == ErrorKind::not_a_document) {
        status = FileStatus::skipped;
    }
    return {std::move(name), std::move(source), {}, 0, std::move(error), status};
}

std::unique_ptr<BatchInputs> open_inputs(const InputOptions &options)
{
    return std::make_unique<AllInputs>(options);
}

} // namespace pfsdoc::batch
