// Output formats: each turns a document's blocks, or its raw events, into bytes.
//
// A format is one file: it implements Writer and is listed in lib/writers/formats.cpp. A writer
// processes blocks one by one and holds at most one paragraph, and the header and footer lines
// if the format stores them elsewhere; anything else that must wait goes to temporary files.
// Tests: tests/lib/writers/*_writer_test.cpp.
#pragma once

#include "pfsdoc/block_sink.h"
#include "pfsdoc/code_page.h"
#include "pfsdoc/error.h"
#include "pfsdoc/export.h"
#include "pfsdoc/formats.h"
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

// For add_attribute_losses: the format supports none.
inline constexpr AttributeSet all_attributes = 0xFFFF;

// What is known of a document before its first block.
struct DocumentInfo {
    DocumentKind kind = DocumentKind::write_a;
    std::string title; // may be empty; what is not fit to be shown is written as \xHH
};

// The members of WriterOptions that not every format reads.
enum class WriterOption : unsigned {
    page_breaks = 1U << 0,
    headers = 1U << 1,
    commands = 1U << 2,
    wrap = 1U << 3,
    raw_lines = 1U << 4,
    lines = 1U << 5,
    offsets = 1U << 6,
    fold = 1U << 7,
};

// Any number of them: `WriterOption::wrap | WriterOption::raw_lines`.
class OptionSet {
public:
    constexpr OptionSet() = default;
    constexpr OptionSet(WriterOption option) : bits_(static_cast<unsigned>(option)) {}

    // True for a set that is empty.
    constexpr bool has_all(OptionSet others) const
    {
        return (bits_ & others.bits_) == others.bits_;
    }
    constexpr OptionSet operator|(OptionSet other) const
    {
        other.bits_ |= bits_;
        return other;
    }

private:
    unsigned bits_ = 0;
};

constexpr OptionSet operator|(WriterOption one, WriterOption other)
{
    return OptionSet(one) | OptionSet(other);
}

// Four times the widest page. A centred word is written behind half as many spaces, so a greater
// width would make a large output of a small document. A greater value counts as this one.
inline constexpr uint32_t max_wrap_columns = 1000;

// Each option is read by the formats that list it, and ignored by the others.
struct WriterOptions {
    const CodePage *code_page = &CodePage::ibm437(); // outlives the writer
    bool page_breaks = true;
    bool headers = true;   // header and footer lines too
    bool commands = false; // show the commands embedded in the text
    // Line width in columns, max_wrap_columns at most; 0: one line per paragraph; unset: the
    // document's own margins.
    std::optional<uint32_t> wrap;
    bool raw_lines = false; // keep the line ends of the file
    bool lines = false;     // one JSON object per line
    bool offsets = false;   // with the source offset of each event
    bool fold = false;      // consecutive characters on one line
    // Descriptors of files open for reading and writing, as many as the format needs, for a
    // writer that runs where it cannot open any. The writer uses them as long as it exists and
    // leaves them empty; the span outlives it. Without them it opens files when needed.
    std::span<const int> scratch_files;
};

// Writes a document's blocks; its output is complete after end_of_document.
class PFSDOC_API Writer : public BlockSink {
public:
    // Complete at the end of the document.
    const LossReport &losses() const
    {
        return losses_;
    }

protected:
    // What a paragraph loses in every format: commands without effect unless they are shown,
    // the rest of truncated commands, bytes without a character.
    void add_common_losses(const Paragraph &paragraph, const WriterOptions &options);
    // One loss for each text piece and each of its attributes that the format does not support.
    void add_attribute_losses(const Paragraph &paragraph, AttributeSet unsupported);

    LossReport losses_;
};

// Writes a document's events.
class PFSDOC_API EventWriter : public EventSink {
public:
    // Ends the output. Call it once, after the last event.
    virtual void finish() = 0;
};

// The output must outlive the writer. Fails if the writer cannot be created.
using MakeWriter = Result<std::unique_ptr<Writer>> (*)(Output &, const DocumentInfo &,
                                                       const WriterOptions &);
using MakeEventWriter = std::unique_ptr<EventWriter> (*)(Output &, const WriterOptions &);

struct Format {
    std::string_view name;
    std::string_view extension; // without the dot
    std::string_view description;
    OptionSet options;                 // those of WriterOptions that it uses
    MakeWriter make_writer;            // null for a format of events
    MakeEventWriter make_event_writer; // null for all others
    // Whether paragraphs need their source offsets, which cost time.
    bool wants_offsets;
    bool is_binary = false; // not to be shown on a terminal
    // The number of temporary files that its writer needs for long documents.
    std::size_t scratch_files = 0;
};

} // namespace pfsdoc
