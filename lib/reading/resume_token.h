// A position in a document as text, for ResumeToken: JSON, with the module's saved state in
// hexadecimal. It names the document it belongs to by kind, size and the start of its bytes,
// so that a token for another file is refused and not resumed into nonsense.
// Tests: tests/lib/reading/document_test.cpp.
#pragma once

#include "lib/reading/block_reader.h"

#include <string>
#include <string_view>

namespace pfsdoc::reading {

// What a token is for.
struct DocumentMark {
    int32_t file_id = 0;
    uint32_t size = 0;
    uint64_t start_hash = 0; // of the first bytes, where the headers are
    bool source_offsets = true;

    bool operator==(const DocumentMark &) const = default;
};

Result<DocumentMark> document_mark(ByteSource &source, DocumentKind kind, bool source_offsets);

struct MarkedPosition {
    DocumentMark document;
    BlockPosition position;
};

std::string token_text(const MarkedPosition &marked);
// ErrorKind::usage for a text that is no token.
Result<MarkedPosition> parse_token(std::string_view text);

} // namespace pfsdoc::reading
