// From a document to its file; names of kinds, and faults.
// Test: tests/builder/build_test.cpp.
#include "builder/build.h"
#include "builder/capabilities.h"
#include "builder/encoders.h"

#include <cctype>

namespace pfs_builder {
namespace {

constexpr const char *optional_prefix = "pfs: ";

std::string lower_case(std::string text)
{
    for (char &letter : text) {
        letter = static_cast<char>(std::tolower(static_cast<unsigned char>(letter)));
    }
    return text;
}

Encoder encoder_of(Kind kind)
{
    switch (kind) {
    case Kind::professional_write_1:
    case Kind::professional_write_2: return encode_professional_write;
    case Kind::first_choice_2: return encode_choice;
    case Kind::first_choice_3: return encode_choice3;
    default: return encode_write;
    }
}

} // namespace

const std::array<KindName, kinds> kind_names = {{
    {Kind::write_a, 1012, "PFS: WRITE A"},
    {Kind::write_b, 1013, "PFS: WRITE B"},
    {Kind::professional_write_1, 1014, "Professional Write 1"},
    {Kind::professional_write_2, 1015, "Professional Write 2"},
    {Kind::writing_assistant, 1016, "IBM Writing Assistant"},
    {Kind::first_choice_2, 1017, "PFS: First Choice 2.0"},
    {Kind::first_choice_3, 1058, "PFS: First Choice 3.0"},
}};

const char *kind_name(Kind kind)
{
    for (const KindName &entry : kind_names) {
        if (entry.kind == kind) {
            return entry.name;
        }
    }
    return "";
}

std::optional<Kind> find_kind(const std::string &text)
{
    const std::string wanted = lower_case(text);
    for (const KindName &entry : kind_names) {
        const std::string name = lower_case(entry.name);
        if (wanted == name || optional_prefix + wanted == name ||
            wanted == std::to_string(entry.file_id)) {
            return entry.kind;
        }
    }
    return std::nullopt;
}

std::string to_string(const Fault &fault)
{
    return fault.file + ":" + std::to_string(fault.line) + ": " + fault.what + "; " + fault.remedy;
}

Fault fault_at(const Document &document, const Location &location, std::string what,
               std::string remedy)
{
    const bool known = location.source < document.sources.size();
    const std::string file = known ? document.sources[location.source] : "document";
    return {file, location.line, std::move(what), std::move(remedy)};
}

Built build(const Document &document)
{
    if (auto fault = check_capabilities(document)) {
        return {{}, std::move(fault)};
    }
    std::string file;
    if (auto fault = encoder_of(document.kind)(document, file)) {
        return {{}, std::move(fault)};
    }
    return {std::vector<uint8_t>(file.begin(), file.end()), std::nullopt};
}

} // namespace pfs_builder
