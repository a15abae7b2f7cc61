// A closer look at an identified file: how certain its kind is, its entry in the PRONOM registry,
// and what is unusual about it. Decided by content alone, as the kind itself.
// extensions.h is about names. Test: tests/lib/reading/examine_test.cpp.
#pragma once

#include "pfsdoc/byte_source.h"
#include "pfsdoc/export.h"
#include "pfsdoc/extensions.h"
#include "pfsdoc/identify.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace pfsdoc {

enum class Confidence : uint8_t {
    certain,  // signature, a plausible header, and an end mark followed only by padding
    likely,   // signature and a plausible header
    signature // signature, but an implausible header
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
    std::vector<std::string> notes; // what is unusual, in words
};

// `kind` is what identify() returned for the source. Read errors are in source.failure().
PFSDOC_API Examination examine(ByteSource &source, DocumentKind kind);

} // namespace pfsdoc
