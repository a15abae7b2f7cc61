// Output formats: each turns a document's blocks, or its raw events, into bytes.
//
// A format is one file: it implements Writer and is listed in lib/writers/formats.cpp. Writers take
// blocks as they come and hold one paragraph at most, with the header and footer lines where
// a format wants them elsewhere; what else must wait is put aside in files. Tests:
// tests/lib/writers/*_writer_test.cpp.
#pragma once

#include "pfsdoc/block_sink.h"
#include "pfsdoc/code_page.h"
#include "pfsdoc/error.h"
#include "pfsdoc/export.h"
#include "pfsdoc/identify.h"
#include "pfsdoc/loss_report.h"
#include "pfsdoc/output.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace pfsdoc {

// For add_attribute_losses.
inline constexpr AttributeSet all_attributes = 0xFFFF;

// What is known of a document before its first block.
struct DocumentInfo {
    DocumentKind kind = DocumentKind::write_a;
    std::string title; // UTF-8 without control characters; may be empty
};

// Each option is read by the formats that list it, and ignored by the others.
struct WriterOptions {
    const CodePage *code_page = &CodePage::ibm437(); // outlives the writer
    bool page_breaks = true;
    bool headers = true;   // header and footer lines too
    bool commands = false; // show the commands embedded in the text
    // Columns that lines are filled to, 0 for one line a paragraph; unset for the document's
    // own margins.
    std::optional<uint32_t> wrap;
    bool raw_lines = false; // lines end where they end in the file
    bool lines = false;     // one JSON object a line
    bool offsets = false;   // with the source offset of each event
    bool fold = false;      // characters that follow each other on one line
    // Descriptors of files to read and write, as many as the format says, for a writer that
    // could open none where it works. They are that writer's until it is gone, and then
    // empty; the span outlives it. Without them it opens files when it needs them.
    std::span<const int> scratch_files;
};

// Takes a document's blocks; its output is complete when end_of_document has been called.
class PFSDOC_API Writer : public BlockSink {
public:
    // Complete at the end of the document.
    const LossReport &losses() const
    {
        return losses_;
    }

protected:
    // What a paragraph loses in every format: commands without effect unless they are shown,
    // the ends of commands that were cut, bytes without a character.
    void add_common_losses(const Paragraph &paragraph, const WriterOptions &options);
    // Of each text piece that has it, for the attributes that the format cannot say.
    void add_attribute_losses(const Paragraph &paragraph, AttributeSet unsayable);

    LossReport losses_;
};

// Takes a document's events.
class PFSDOC_API EventWriter : public EventSink {
public:
    // Ends the output; to be called once after the last event.
    virtual void finish() = 0;
};

// The output must outlive the writer. An error where the writer cannot be made.
using MakeWriter = Result<std::unique_ptr<Writer>> (*)(Output &, const DocumentInfo &,
                                                       const WriterOptions &);
using MakeEventWriter = std::unique_ptr<EventWriter> (*)(Output &, const WriterOptions &);

struct Format {
    std::string_view name;
    std::string_view extension; // without the dot
    std::string_view description;
    std::string_view options;          // names of WriterOptions that it reads, a blank after each
    MakeWriter make_writer;            // null for a format of events
    MakeEventWriter make_event_writer; // null for all others
    // Whether paragraphs are to come with the offsets of their source, which costs time.
    bool wants_offsets;
    bool is_binary = false; // nothing to be shown on a terminal
    // In how many files its writer puts bytes aside that need not fit in memory. Short
    // documents need none.
    std::size_t scratch_files = 0;

    bool reads_option(std::string_view option) const
    {
        return options.find(std::string(option) + " ") != std::string_view::npos;
    }
};

// All formats, in the order in which help texts list them.
PFSDOC_API std::span<const Format *const> formats();
// Null for an unknown name.
PFSDOC_API const Format *find_format(std::string_view name);

} // namespace pfsdoc
