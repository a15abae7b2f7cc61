// What each subcommand does, once the command line has been understood. Test:
// tests/command/command_test.cpp.
#pragma once

#include "lib/explain/explain_text.h"
#include "lib/writers/trace.h"
#include "pfsdoc/error.h"
#include "pfsdoc/writer.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace pfsdoc::cli {

// What the commands for one document have in common. "-" is standard input and standard output.
struct DocumentRequest {
    std::string file;
    std::string output;
    std::string module;
    uint64_t max_output = UINT64_MAX; // bytes
};

struct TraceRequest {
    DocumentRequest document;
    writers::TraceOptions options;
    bool stop = false;
};

struct ConvertRequest {
    DocumentRequest document;
    const Format *format = nullptr;
    WriterOptions options;
    bool report = false; // list on standard error what the format could not say
};

struct ExplainRequest {
    DocumentRequest document;
    bool json = false;
    std::optional<explaining::Colours> colours; // unset: on a terminal only
    const CodePage *code_page = &CodePage::ibm437();
};

enum class IdentifyForm { table, json_array, json_lines };

struct IdentifyRequest {
    std::vector<std::string> files;
    IdentifyForm form = IdentifyForm::table;
};

// Each gives the program's exit code, and has told standard error why if it is not 0.
int run_trace(const TraceRequest &request);
int run_convert(const ConvertRequest &request);
int run_explain(const ExplainRequest &request);
// Goes on after a file that fails; with several files the exit code is then 1.
int run_identify(const IdentifyRequest &request);

// Writes a line, such as a help text, to standard output.
int run_print(std::string_view text);

// One line on standard error, `pfsdoc: SUBJECT: what is wrong; what can be done`; the
// subject may be empty. The error's exit code.
int report(const std::string &subject, const Error &error);

} // namespace pfsdoc::cli
