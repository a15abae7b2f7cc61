// A command's options, set up in its parser, and what was given of them. Test:
// tests/cli/options_test.cpp.
#pragma once

#include "cli/option_table.h"
#include "pfsdoc/error.h"

#include <vector>

namespace pfsdoc::cli {

class Options {
public:
    Options() = default;
    Options(const Options &) = delete;
    Options &operator=(const Options &) = delete;

    // The parser refers to this object from here on.
    void add_to(CLI::App &parser, Command command);

    // After parsing.
    const Arguments &arguments() const
    {
        return arguments_;
    }
    // An error for the first option that was given and that the format does not read.
    Status check_format(const Format &format) const;

private:
    struct Added {
        const OptionEntry *entry;
        const CLI::Option *option;
    };

    Arguments arguments_;
    std::vector<Added> added_;
};

// That the documents are read in.
Result<CodePage> code_page_of(const Arguments &arguments);

} // namespace pfsdoc::cli
