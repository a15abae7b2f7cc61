// The values of all options of the command line, and what holds for those that are not given.
// Which command has which of them: option_table.h.
#pragma once

#include "pfsdoc/writer.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace pfsdoc::cli {

inline constexpr std::size_t most_jobs = 1024;
inline constexpr std::size_t most_files_per_process = 64; // an open output for each

struct Arguments {
    // "-" is standard input, and as the output standard output.
    std::string file;               // of the commands for one document
    std::vector<std::string> paths; // of those for several
    std::string output;
    bool no_clobber = false; // no file that exists is replaced
    std::string format;
    std::string charset; // empty: code page 437
    std::string module;
    WriterOptions writer; // except its code page

    bool json = false;
    bool json_lines = false;
    bool verbose = false;
    std::string color = "auto";
    bool stop = false;   // at every paragraph
    bool report = false; // list the losses on standard error

    std::vector<std::string> list_files;
    std::string manifest;
    bool quiet = false;
    bool strict = false;    // what is no document is a failure, too
    std::string verified;   // an output folder
    bool overwrite = false; // files that are not the batch's own
    std::optional<std::size_t> jobs;
    std::size_t files_per_process = 8;
    std::optional<double> max_seconds;
    // In bytes.
    std::optional<uint64_t> max_input;
    std::optional<uint64_t> max_memory;
    std::optional<uint64_t> max_output;

    std::string sandbox; // empty: the command's own choice
    bool no_sandbox = false;
};

} // namespace pfsdoc::cli
