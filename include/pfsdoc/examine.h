// A closer look at a file that has been identified: how sure its kind is, what the PRONOM
// registry calls it, what is odd about it. Decided by content alone, as the kind itself; only
// the extension's verdict is about the name. Test: tests/lib/reading/examine_test.cpp.
#pragma once

#include "pfsdoc/byte_source.h"
#include "pfsdoc/export.h"
#include "pfsdoc/identify.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace pfsdoc {

enum class Confidence : uint8_t {
    certain,  // signature, a plausible header, and an end mark behind which only fill comes
    likely,   // signature and a plausible header
    signature // the signature, and a header that is not plausible
};

// "certain", "likely", "signature".
PFSDOC_API std::string_view confidence_name(Confidence confidence);

// Whether a file has the signature by which PRONOM itself would recognise it.
enum class RegistrySignature : uint8_t { none, matches, differs };

// The registry's entry for a kind; empty where there is none.
PFSDOC_API std::string_view pronom_id(DocumentKind kind);

struct Examination {
    Confidence confidence = Confidence::signature;
    RegistrySignature registry_signature = RegistrySignature::none;
    std::vector<std::string> notes; // what is odd, in words
};

PFSDOC_API Examination examine(ByteSource &source, DocumentKind kind);

// Words for a name whose extension belongs to another well-known format, or to another of
// the kinds here; empty where it fits or means nothing. Extensions are taken without regard
// to case. Much of what these programs wrote has none, or one of the writer's own.
PFSDOC_API std::string extension_mismatch(std::string_view file_name, DocumentKind kind);

} // namespace pfsdoc
