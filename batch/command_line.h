// The command line of `pfsdoc batch`. The manual page is docs/man/pfsdoc-batch.1; what is said
// here and there must agree. Test: tests/batch/run/batch_test.cpp.
#pragma once

#include "batch/batch_run.h"

#include <CLI/CLI.hpp>

#include <memory>
#include <optional>
#include <string>

namespace pfsdoc::batch {

// What was asked for, as it stands on the command line.
class BatchCommandLine {
public:
    BatchCommandLine();
    BatchCommandLine(const BatchCommandLine &) = delete;
    BatchCommandLine &operator=(const BatchCommandLine &) = delete;

    CLI::App &app()
    {
        return app_;
    }
    // After parsing. Everything that workers need is loaded here, so that they get it by
    // being forked. The command line must outlive what it is the request of.
    Result<BatchRequest> request();

private:
    void add_files();
    void add_text_options();
    void add_limits();
    Result<ConversionSettings> conversion();
    std::string options_that_matter() const;

    CLI::App app_;
    InputOptions inputs_;
    std::string output_;
    std::string manifest_;
    std::string format_;
    std::string charset_;
    std::string module_path_;
    std::string sandbox_ = "available";
    WriterOptions options_;
    bool no_page_breaks_ = false;
    bool no_headers_ = false;
    bool no_sandbox_ = false;
    bool quiet_ = false;
    std::size_t jobs_ = 0; // 0: one for each processor
    double max_seconds_ = 30;
    uint64_t max_memory_ = uint64_t{1} << 30;
    uint64_t max_output_ = uint64_t{1} << 30;
    std::optional<CodePage> code_page_;
    std::optional<Module> module_;
};

} // namespace pfsdoc::batch
