// From a document to the bytes of its file, and what each kind can say.
#pragma once

#include "builder/document.h"

namespace pfs_builder {

struct Built {
    std::vector<uint8_t> bytes;
    std::optional<Fault> fault; // set: there are no bytes
};

// The file of a document. What its kind cannot say is a fault.
Built build(const Document &document);

// The file id and the name by which hosts know a kind.
struct KindName {
    Kind kind;
    int file_id;
    const char *name;
};
inline constexpr std::size_t kinds = 7;
extern const std::array<KindName, kinds> kind_names;

const char *kind_name(Kind kind);

// The kind of a file id in digits or of a name in letters of either case, with or without
// its "PFS: ".
std::optional<Kind> find_kind(const std::string &text);

} // namespace pfs_builder
