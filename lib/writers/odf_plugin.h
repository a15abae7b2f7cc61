// The border between a program and the plug-in that writes OpenDocument. The libraries that
// the plug-in needs take longer to load than a letter takes to convert, so it is loaded only
// when such a format is asked for.
//
// The two sides may have different C++ runtimes: the program brings its own, the plug-in uses
// the system's. So no exception may cross: every function here is noexcept, and what goes
// wrong on one side stays there until it is asked for. Objects cross by reference, and are
// destroyed on the side that made them. Both sides must be compiled from the same headers;
// PFSDOC_PLUGIN_BUILD, a fingerprint of them and of the compiler, tells whether they are.
// Tests: tests/lib/writers/odf_plugin_test.cpp.
#pragma once

#include "pfsdoc/block_sink.h"
#include "pfsdoc/loss_report.h"
#include "pfsdoc/writer.h"

#include <cstdint>
#include <string_view>

namespace pfsdoc::writers {

enum class OdfPackaging : uint32_t { zip, flat };

enum class OdfFailure : uint32_t { none, too_large, out_of_memory, scratch, other };

// Of the program.
class OdfOutput {
public:
    virtual void write(std::string_view bytes) noexcept = 0;

protected:
    ~OdfOutput() = default;
};

// Of the plug-in: a BlockSink whose calls come back. After a failure they do nothing.
class OdfWriter {
public:
    virtual void paragraph(const Paragraph &paragraph) noexcept = 0;
    virtual void page_break(uint32_t source) noexcept = 0;
    virtual void block_begin(BlockKind kind) noexcept = 0;
    virtual void block_end() noexcept = 0;
    virtual void end_of_document() noexcept = 0;

    virtual OdfFailure failure() const noexcept = 0;
    // Of OdfFailure::scratch: why a temporary file cannot be used.
    virtual int system_error() const noexcept = 0;
    virtual const LossReport &losses() const noexcept = 0;
    // The writer is gone after it.
    virtual void release() noexcept = 0;

protected:
    ~OdfWriter() = default;
};

// What the plug-in hands over first. Nothing but `build` may be looked at before that has been
// compared.
struct OdfPlugin {
    const char *build;
    // Null where there is no memory for a writer.
    OdfWriter *(*open)(OdfPackaging packaging, OdfOutput &output, const DocumentInfo &info,
                       const WriterOptions &options) noexcept;
};

inline constexpr const char *odf_plugin_file_name = "pfsdoc_odf.so";
inline constexpr const char *odf_plugin_symbol = "pfsdoc_odf_plugin";
using GetOdfPlugin = const OdfPlugin *(*)();

} // namespace pfsdoc::writers
