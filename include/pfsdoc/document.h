// A document: opened once, then read as a whole into a sink, or block by block.
//
// Block by block, reading can stop anywhere: place() returns a token, and resume() continues from
// one, in this process or another, in any document opened on the same file. The blocks are the
// same as without the stop.
//
// A Document is used by one thread at a time; documents in different threads share nothing.
// Memory is bounded by the largest paragraph, and that by the limits of paragraph.h. Errors are
// values; nothing is thrown but what a sink throws, and std::bad_alloc. A sink that throws
// ReadingStopped (reading_stopped.h) ends the reading, which returns its error. Tests:
// tests/lib/reading/document_test.cpp.
#pragma once

#include "pfsdoc/after_end.h"
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
    // The module to read with; null for the one that is built into this library. Copied.
    const Module *module = nullptr;
    // Whether paragraphs and pieces carry their offsets in the file. If not, reading is faster
    // and all offsets are 0.
    bool source_offsets = true;
};

struct Block {
    enum class Kind : uint8_t { paragraph, header_line, footer_line, page_break };

    Kind kind = Kind::paragraph;
    Paragraph paragraph;      // empty for page breaks
    uint32_t source = 0;      // of page breaks: the first one's offset in the file, in bytes
    uint64_t page_breaks = 0; // how many in a row; 0 in other blocks

    bool operator==(const Block &) const = default;
};

// The layout that the document begins with. Units are twips.
struct PageSetup {
    Margins margins{};
    std::vector<TabStop> tab_stops;
};

// A position between two blocks of a document. Its text has no line ends and can be stored
// anywhere; it is valid for that document only.
class PFSDOC_API ResumeToken {
public:
    // Fails with ErrorKind::usage if the text is not a token. Resuming from one that has been
    // tampered with may produce nonsense, never worse.
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
    // All identify the document by its content. Errors: input (cannot be read), not_a_document,
    // limit (4 GiB or more), internal (the module is unsuitable).
    static Result<Document> open(const std::string &path, const OpenOptions &options = {});
    static Result<Document> from_bytes(std::vector<uint8_t> bytes, const OpenOptions &options = {});
    static Result<Document> from_source(std::unique_ptr<ByteSource> source,
                                        const OpenOptions &options = {});
    // The block file must outlive the document, which does not close it.
    static Result<Document> from_block_file(VwBlockFile &file, const OpenOptions &options = {});

    Document(Document &&other) noexcept;
    Document &operator=(Document &&other) noexcept;
    ~Document();

    DocumentKind kind() const;
    const Identity &identity() const;
    uint32_t size() const; // of the file, in bytes
    // Does not affect next(). Errors: input, internal.
    Result<PageSetup> page_setup();

    // Delivers the whole document, independently of next(). A paragraph that is too large ends it
    // with ErrorKind::limit. An error may come after some blocks have been delivered; before
    // ErrorKind::damaged, which means that the file ends before the document does, all blocks and
    // the end have been delivered.
    Status read(BlockSink &sink);
    // The same with the module's own events. With in_steps reading stops at every paragraph and
    // continues from a saved state in another instance: slower, with the same events.
    Status read_events(EventSink &sink, bool in_steps = false);

    // What the file holds behind the document's end mark, if it is more than padding; nothing too
    // where the document is truncated. Reads the document if neither read(), read_events() nor
    // next() has come to its end. Errors: those of read().
    Result<std::optional<AfterEnd>> after_end();

    // The next block, or nothing at the end of the document. A truncated document ends with
    // ErrorKind::damaged instead. After an error every call returns it again.
    Result<std::optional<Block>> next();

    // The position of the block that next() would return.
    Result<ResumeToken> place();
    // After this, next() returns the block at the token's position. Fails with ErrorKind::usage if
    // the token is of another document or of other OpenOptions.
    Status resume(const ResumeToken &token);

private:
    struct State;
    explicit Document(std::unique_ptr<State> state);

    std::unique_ptr<State> state_;
};

} // namespace pfsdoc
