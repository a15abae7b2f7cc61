// A whole document in one call: what a program does that wants events and has no wish to
// know about sessions. Test: tests/lib/reading/session_test.cpp.
#pragma once

#include "lib/reading/block_file.h"
#include "lib/reading/resume.h"
#include "lib/reading/session.h"
#include "pfsdoc/error.h"
#include "pfsdoc/events.h"
#include "pfsdoc/identify.h"
#include "pfsdoc/module.h"

#include <memory>

namespace pfsdoc::reading {

enum class Stops {
    none,
    // Stops at every paragraph break and goes on from the saved position in another session:
    // slower, and the same events.
    at_breaks,
    // Where the text may have changed its margins (Professional Write), stops at a paragraph's
    // break to have them reported; the change comes before the break of the paragraph that holds
    // it. All else is the same.
    for_margins
};

struct ReadOptions {
    Offsets offsets = Offsets::none;
    Stops stops = Stops::none;
};

// Delivers a document's events, from its section's start to its end, and returns the offset behind
// its end mark. An error may come after events have been delivered: a file can fail in its middle.
// After ErrorKind::damaged all of them have been, the end included: the file ends before the
// document does.
Result<uint32_t> read_document(const Module &module, ByteSource &source, DocumentKind kind,
                               EventSink &sink, const ReadOptions &options = {});

// Whether what such a call answers means that all there is of the document has been delivered.
inline bool is_read_to_end(const Status &fault)
{
    return fault.ok() || fault.error().kind == ErrorKind::damaged;
}

// An instance of the module that has opened the document. The file must outlive it.
Result<std::unique_ptr<Session>> open_session(const Module &module, BlockFile &file,
                                              DocumentKind kind, Offsets offsets);

// The offset behind the end mark of a document that was read to its reported end, if it has ended
// by itself: the end of the data is reported as the document's end too.
Result<uint32_t> check_end(const Session &session, const ByteSource &source);

// Whether the text can change its margins, which the module reports at the start of a read.
bool text_changes_margins(DocumentKind kind);

// Professional Write never undoes a paragraph's indents; all others do, after its break.
IndentsReset indents_reset(DocumentKind kind);

} // namespace pfsdoc::reading
