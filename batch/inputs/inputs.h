// The files of a batch, one after the other in an order that depends on nothing but their
// names: those of folders (below them too, sorted by name), of lists, of zip and tar
// archives, and single ones. Tests: tests/batch/inputs_test.cpp.
#pragma once

#include "error.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace pfsdoc {

// A descriptor that is closed with its object.
class OpenFile {
public:
    explicit OpenFile(int descriptor = -1) : descriptor_(descriptor) {}
    ~OpenFile();
    OpenFile(OpenFile &&other) noexcept : descriptor_(other.release()) {}
    OpenFile &operator=(OpenFile &&other) noexcept;

    int get() const
    {
        return descriptor_;
    }
    int release();

private:
    int descriptor_;
};

struct BatchInput {
    // The name that the manifest and the output go by: relative to the folder or archive that
    // it was found in, behind that one's own name; "/" between the parts, and never one that
    // leads out of the output folder ("..", an absolute path, an empty part).
    std::string name;
    OpenFile file;              // positioned at its start; can be positioned (regular or in memory)
    uint64_t size = 0;          // in bytes
    std::optional<Error> error; // set: it cannot be read, and file is not open
};

struct InputOptions {
    std::vector<std::string> paths;         // files, folders, archives
    std::vector<std::string> list_files;    // --files-from; "-" is standard input
    uint64_t max_input = uint64_t{1} << 32; // larger ones get an error of ErrorKind::limit
};

class BatchInputs {
public:
    virtual ~BatchInputs() = default;
    // The next one, or nothing at the end. An error in place of an input ends nothing: it is
    // the input's own. Memory does not grow with the number of files in lists and archives;
    // one folder's names are held at a time, and its parents'.
    virtual std::optional<BatchInput> next() = 0;
};

// Archives are read in a process of their own, in the sandbox that is asked for
// (batch/sandbox/sandbox.h): their bytes are strangers' too.
std::unique_ptr<BatchInputs> open_inputs(const InputOptions &options);

} // namespace pfsdoc
