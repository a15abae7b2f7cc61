// A document: opened once, then read whole into a sink, or block by block.
//
// Block by block, reading can stop anywhere: place() gives a token, and resume() goes on from
// one, in this process or another, in any document opened on the same file. What comes is the
// same as without the stop.
//
// A Document is used by one thread at a time; documents in different threads share nothing.
// Memory is bounded by the largest paragraph, and that by max_paragraph_bytes. Errors are
// values; nothing is thrown but what a sink throws, and std::bad_alloc. A sink that throws
// ReadingStopped (reading_stopped.h) ends the reading, which answers with its error. Tests:
// tests/lib/reading/document_test.cpp.
#pragma once

#include "pfsdoc/block_sink.h"
#include "pfsdoc/byte_source.h"
#include "pfsdoc/error.h"
#include "pfsdoc/events.h"
#include "pfsdoc/export.h"
#include "pfsdoc/identify.h"
#include "pfsdoc/module.h"
#include "pfsdoc/paragraph.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

struct VwBlockFile;

namespace pfsdoc {

struct OpenOptions {
    // What to read with: null for the module that is built into this library. Copied.
    const Module *module = nullptr;
    // Whether paragraphs and pieces know their place in the file; without, reading is faster
    // and all their offsets are 0.
    bool source_offsets = true;
};

struct Block {
    enum class Kind : uint8_t { paragraph, header_line, footer_line, page_break };

    Kind kind = Kind::paragraph;
    Paragraph paragraph;      // empty for page breaks
    uint32_t source = 0;      // of page breaks: the first one's offset in the file
    uint64_t page_breaks = 0; // how many in a row

    bool operator==(const Block &) const = default;
};

// What a paragraph in front of the text would have.
struct PageSetup {
    Margins margins{};
    std::vector<TabStop> tab_stops;
};

// A place between two blocks of a document. Its text has no line ends and may be kept
// anywhere; it means nothing for any other document.
class PFSDOC_API ResumeToken {
public:
    // Refused with ErrorKind::usage when the text is no token. One that was tampered with may
    // give nonsense when it is resumed from, and never worse.
    static Result<ResumeToken> parse(std::string_view text);
    const std::string &text() const
    {
        return text_;
    }

private:
    friend class Document;
    explicit ResumeToken(std::string text) : text_(std::move(text)) {}

    std::string text_;
};

class PFSDOC_API Document {
public:
    // Each identifies the document by its content. Errors: input (cannot be read),
    // not_a_document, limit (4 GiB or more), internal (the module is unfit).
    static Result<Document> open(const std::string &path, const OpenOptions &options = {});
    static Result<Document> from_bytes(std::vector<uint8_t> bytes, const OpenOptions &options = {});
    static Result<Document> from_source(std::unique_ptr<ByteSource> source,
                                        const OpenOptions &options = {});
    // The record must outlive the document, which never closes it.
    static Result<Document> from_block_file(VwBlockFile &file, const OpenOptions &options = {});

    Document(Document &&other) noexcept;
    Document &operator=(Document &&other) noexcept;
    ~Document();

    DocumentKind kind() const;
    const Identity &identity() const;
    uint32_t size() const; // of the file, in bytes
    Result<PageSetup> page_setup();

    // Delivers the whole document, wherever next() stands. Stops with ErrorKind::limit at a
    // paragraph that is too large. An error may come after blocks were
    // delivered; after ErrorKind::damaged all of them have been, and the end: the file ends
    // before the document does.
    Status read(BlockSink &sink);
    // The same in the module's own events. With in_steps the reading stops at every paragraph
    // and goes on from a saved state in another instance: slower, and the same events.
    Status read_events(EventSink &sink, bool in_steps = false);

    // The next block, or nothing at the end of the document. A document that is cut short
    // gives ErrorKind::damaged in place of its end. After an error every call repeats it.
    Result<std::optional<Block>> next();

    // The place in front of the block that next() would give.
    Result<ResumeToken> place();
    // The next block is the one in front of which the token was taken. Refused with
    // ErrorKind::usage where the token is of another document or of other OpenOptions.
    Status resume(const ResumeToken &token);

private:
    struct State;
    explicit Document(std::unique_ptr<State> state);

    std::unique_ptr<State> state_;
};

} // namespace pfsdoc
