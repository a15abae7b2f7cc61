// The files of a batch, one after the other in an order that depends on nothing but their
// names: those of folders (below them too, sorted by name), of lists, of zip and tar
// archives, and single ones.
//
// Everything that was named is accounted for: what cannot be read comes as an input with an
// error, in its place. Only folders have no input of their own. Tests:
// tests/batch/trusted/inputs_test.cpp and archive_inputs_test.cpp.
#pragma once

#include "batch/trusted/child_process.h"
#include "batch/wire/outcome.h"
#include "batch/wire/settings.h"
#include "lib/base/descriptor.h"
#include "pfsdoc/error.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace pfsdoc::batch {

struct BatchInput {
    // The name that the manifest and the output go by: relative to the folder or archive that
    // it was found in, behind that one's own name; "/" between the parts, and never one that
    // leads out of the output folder ("..", an absolute path, an empty part). What a list names
    // goes by the whole path there. No two inputs of a batch have the same name, nor are their
    // outputs in each other's way: later ones get " (2)", " (3)" before their ending (NameSet).
    std::string name;
    // Where it was found: the path as it was given, and behind that of a folder "/" and the way
    // from there, behind that of an archive "!/" and the member's name. Any bytes.
    std::string source;
    base::Descriptor file{}; // positioned at its start; can be positioned (regular or in memory)
    uint64_t size = 0;       // in bytes
    std::optional<Error> error{};               // set: it cannot be read, and file is not open
    FileStatus status = FileStatus::unreadable; // with an error: never one that has an output
};

// For what is not read. The error's kind says why: damaged is an archive, of which nothing becomes
// an output; not_a_document is what is no file, and was found rather than named.
BatchInput failed_input(std::string name, std::string source, Error error);

// Waits until the descriptor can be read from. False: no more inputs are wanted, or it was too
// late.
using WaitForInput =
    std::function<bool(int descriptor, std::chrono::steady_clock::time_point deadline)>;

// Starts a process that reads an archive and writes its messages to the output.
using StartArchiveReader = std::function<Result<ChildProcess>(int archive, int output)>;

// Whether a file that is open is one that the run itself wrote, or one before it; and whether a
// name in a folder is that of a file that the run is writing, and that may be gone the next moment.
using IsOwnFile = std::function<bool(int file)>;
using IsOwnName = std::function<bool(const std::string &name)>;

struct InputOptions : ArchiveSettings {  // max_input holds for files, too
    std::vector<std::string> paths;      // files, folders, archives
    std::vector<std::string> list_files; // --files-from; "-" is standard input
    std::string extension;               // of the outputs, without its dot
    std::vector<std::string> reserved;   // files in the output folder that are not outputs
    std::string exclude; // a folder that is passed over inside others: the output's; may be empty
    IsOwnFile is_own;    // what is passed over, wherever it is found; these may be empty
    IsOwnName is_own_name;
    StartArchiveReader start_archive_reader;
    std::chrono::milliseconds max_time{30000}; // without progress, of the reader of an archive
    WaitForInput wait;                         // for lists that come out of pipes, and for archives
};

class BatchInputs {
public:
    virtual ~BatchInputs() = default;
    // The next one, or nothing at the end. An error in place of an input ends nothing: it is
    // the input's own.
    //
    // Of each name a number is kept, some 50 bytes, to tell when one comes again. Of files and
    // paths nothing else is: one folder's names are held at a time, and its parents'.
    virtual std::optional<BatchInput> next() = 0;
};

// The paths come first, then what the lists name. Symbolic links are followed where a path or a
// list names them, and are an error inside folders and archives: neither may lead elsewhere.
//
// A file is an archive by its ending: .zip, .tar, .tar.gz, .tgz, .tar.bz2, .tar.xz and .tar.zst,
// in capitals too; but not as a member of another archive. Archives are read in a process of
// their own, in the sandbox that is asked for: their bytes are strangers' too.
std::unique_ptr<BatchInputs> open_inputs(const InputOptions &options);

} // namespace pfsdoc::batch
