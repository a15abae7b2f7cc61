// One encoder for each generation of bodies, and the two headers that precede them.
#pragma once

#include "builder/document.h"

namespace pfs_builder {

// Each makes the whole file of a document that its kind supports (capabilities.h), or reports
// which line end would be misread.
using Encoder = std::optional<Fault> (*)(const Document &document, std::string &file);

std::optional<Fault> encode_write(const Document &document, std::string &file);
std::optional<Fault> encode_professional_write(const Document &document, std::string &file);
std::optional<Fault> encode_choice(const Document &document, std::string &file);
std::optional<Fault> encode_choice3(const Document &document, std::string &file);

// Everything before the body: the header area, the form feed and the records after it.
std::string write_header(const Document &document);
std::string choice_header(const Document &document);

// A record of a Write-family text.
std::string encode_record(const MarginRecord &record);
std::string encode_record(const OtherRecord &record);

// The margins that the body begins with: the header's or those of the last margin record.
Margins margins_before_body(const Document &document);

} // namespace pfs_builder
