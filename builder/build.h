// From a document to the bytes of its file, and what each kind supports.
#pragma once

#include "builder/document.h"

namespace pfs_builder {

struct Built {
    std::vector<uint8_t> bytes;
    std::optional<Fault> fault; // set: there are no bytes
};

// The file of a document. Anything that its kind does not support is a fault.
Built build(const Document &document);

// The file id and the name that hosts use for a kind.
struct KindName {
    Kind kind;
    int file_id;
    const char *name;
};
inline constexpr std::size_t kinds = 7;
extern const std::array<KindName, kinds> kind_names;

const char *kind_name(Kind kind);

// The kind for a file id in digits, or for a name in either case, with or without "PFS: ".
std::optional<Kind> find_kind(const std::string &text);

} // namespace pfs_builder
