// What the tests of the library share: a sink that records its events, one document of each kind,
// and reading in one call.
#pragma once

#include "lib/reading/block_file.h"
#include "lib/reading/read_document.h"
#include "lib/reading/session.h"
#include "pfsdoc/events.h"
#include "pfsdoc/identify.h"
#include "pfsdoc/module.h"

#include "tests/support/notation.h"
#include "tests/support/raw_documents.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace tests {

struct Told {
    pfsdoc::Event event;
    uint32_t offset;
    bool operator==(const Told &) const = default;
};

class KeepingSink final : public pfsdoc::EventSink {
public:
    int32_t on_event(const pfsdoc::Event &event, uint32_t offset) override
    {
        told.push_back({event, offset});
        return answer;
    }
    template <typename E> std::vector<E> all() const
    {
        std::vector<E> found;
        for (const Told &one : told) {
            if (const auto *event = std::get_if<E>(&one.event)) {
                found.push_back(*event);
            }
        }
        return found;
    }

    std::vector<Told> told;
    int32_t answer = 0;
};

inline std::unique_ptr<pfsdoc::MemorySource> source_from(std::string_view document)
{
    return std::make_unique<pfsdoc::MemorySource>(
        std::vector<uint8_t>(document.begin(), document.end()));
}

// The linked-in module: the command's tests cover the loaded one.
inline pfsdoc::Module linked_module()
{
    return pfsdoc::Module::linked().value();
}

// A session on a document in memory, not opened yet.
struct DocumentSession {
    explicit DocumentSession(std::string_view document,
                             pfsdoc::reading::Offsets offsets = pfsdoc::reading::Offsets::none)
        : source(source_from(document)), file(*source),
          session(std::move(
              pfsdoc::reading::Session::create(linked_module(), file.get(), offsets).value()))
    {
    }
    pfsdoc::reading::Session *operator->()
    {
        return session.get();
    }

    std::unique_ptr<pfsdoc::MemorySource> source;
    pfsdoc::reading::BlockFile file;
    std::unique_ptr<pfsdoc::reading::Session> session;
};

struct KindExample {
    pfsdoc::DocumentKind kind;
    std::string_view body; // in the notation of notation.h
};

// A body for each kind: a wrapped paragraph, indents, attributes, an empty paragraph, a page
// break command, and what else the kind has.
inline const std::vector<KindExample> &kind_examples()
{
    using pfsdoc::DocumentKind;
    constexpr std::string_view write_body =
        "0D '  Hello ' C1 01 C2 02 ' there' 0D 0D '   ' 0D 'new *NEW PAGE* page' 0D"
        "'x'x62 ' end' 0D 'wrapped' 0D '    deep' 0D 0D 0D 'last' 0D 0E";
    constexpr std::string_view professional_body =
        "01 '   Hi' C1 03 01 'there' 00 'more' 03 00 01 07 05 01 0B 30 'moved' 01 02 'a' 02 'cut'"
        "00 '*N*' 01 '  in' 01 'out' 01 0E";
    constexpr std::string_view choice_body =
        "'  Hello ' C1 01 C2 48 04 0C 0C 'double' 0D 'x'x58 0C 'wrapped' 0C '*NEW PAGE*' 0D"
        "'    deep' 0C 0C 'last' 0C 0E";
    constexpr std::string_view choice3_body =
        "40 01 '  Hello ' C1 01 0D 40 01 0D 00 'soft' 0D 40 01 'end' 0D"
        "0C 'xxx' '[ T  T ]' 0D 40 01 '   indented' 0D 08 'page' 0D 40 01 'last' 0D 0E";
    static const std::vector<KindExample> examples = {
        {DocumentKind::write_a, write_body},
        {DocumentKind::write_b, write_body},
        {DocumentKind::professional_write_1, professional_body},
        {DocumentKind::professional_write_2, professional_body},
        {DocumentKind::writing_assistant, write_body},
        {DocumentKind::first_choice_2, choice_body},
        {DocumentKind::first_choice_3, choice3_body}};
    return examples;
}

inline bool is_choice(pfsdoc::DocumentKind kind)
{
    return kind == pfsdoc::DocumentKind::first_choice_2 ||
           kind == pfsdoc::DocumentKind::first_choice_3;
}

inline std::string document_of(pfsdoc::DocumentKind kind, std::string_view body,
                               const Patches &patches = {})
{
    using pfsdoc::DocumentKind;
    switch (kind) {
    case DocumentKind::write_a: return write_document(1, body, patches);
    case DocumentKind::write_b: return write_document(2, body, patches);
    case DocumentKind::writing_assistant: return write_document(3, body, patches);
    case DocumentKind::professional_write_1: return write_document(4, body, patches);
    case DocumentKind::professional_write_2: return write_document(5, body, patches);
    case DocumentKind::first_choice_2: return choice_document('1', body, patches);
    case DocumentKind::first_choice_3: break;
    }
    return choice_document('3', body, patches);
}

inline Patch header_line(pfsdoc::DocumentKind kind, int line, std::string_view text)
{
    return is_choice(kind) ? choice_header_line(line, text) : write_header_line(line, text);
}

// Of a whole document or one that is cut.
inline KeepingSink read_at_once(const std::string &document, pfsdoc::DocumentKind kind,
                                pfsdoc::reading::ReadOptions options = {})
{
    KeepingSink sink;
    const auto source = source_from(document);
    const pfsdoc::Status fault =
        pfsdoc::reading::read_document(linked_module(), *source, kind, sink, options);
    EXPECT_TRUE(fault.ok() || fault.error().kind == pfsdoc::ErrorKind::damaged)
        << fault.error().what;
    return sink;
}

} // namespace tests
