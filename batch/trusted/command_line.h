// The command line of `pfsdoc batch`. The manual page is docs/man/pfsdoc-batch.1; what is said
// here and there must agree. Test: tests/batch/run/batch_test.cpp.
#pragma once

#include "batch/trusted/batch_request.h"
#include "batch/trusted/verification.h"
#include "cli/options.h"

#include <CLI/CLI.hpp>

#include <optional>

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

    // Whether outputs are to be verified, and nothing is to be converted.
    bool verifies() const
    {
        return !options_.arguments().verified.empty();
    }
    Result<VerificationRequest> verification() const;

private:
    Status check_arguments() const;
    Result<ConversionSettings> conversion();

    CLI::App app_;
    cli::Options options_;
    std::optional<CodePage> code_page_;
    std::optional<Module> module_;
};

} // namespace pfsdoc::batch
