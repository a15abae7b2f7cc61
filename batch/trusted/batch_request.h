// What a batch is asked to do, and what can be said of it before it begins. Test:
// tests/batch/run/batch_test.cpp.
#pragma once

#include "batch/trusted/inputs.h"
#include "batch/trusted/progress.h"
#include "batch/trusted/record.h"
#include "batch/wire/settings.h"
#include "pfsdoc/error.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace pfsdoc::batch {

// Of the manifest in the output folder, where no other file is named for it.
inline constexpr const char *manifest_name = "manifest.ndjson";

struct BatchRequest {
    InputOptions inputs;
    std::string output;   // a folder
    std::string manifest; // a file
    WorkerSettings worker;
    std::size_t workers = 1;
    std::size_t files_per_process = 1;
    std::chrono::milliseconds max_time{30000}; // for a file
    RecordedRequest recorded;
    ProgressForm progress = ProgressForm::lines;
    bool quiet = false;
    bool strict = false; // files that are no documents are failures of the run, too
    bool verbose = false;
    bool overwrite = false; // files that are not the batch's own
};

// What is written must not be read: the run would not be the same when it is done again, or
// have no end. Below the folders that are read, the output's own is passed over. Errors: usage.
Status check_paths(const BatchRequest &request);

// How many files there are, where that can be counted quickly and for sure: not of archives and
// lists.
std::optional<uint64_t> count_files(const InputOptions &inputs);

// Those that this process may run on; 1 where the system does not say.
std::size_t count_processors();

} // namespace pfsdoc::batch
