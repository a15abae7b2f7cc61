// Documents as OpenDocument, for the tests of its writer: the single XML file, or a part of it.
#pragma once

#include "tests/lib/writers/losses_of.h"
#include "tests/lib/writers/written.h"
#include "tests/support/odf_facts.h"
#include "tests/support/unpacked_package.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <string_view>

namespace tests {

using namespace pfsdoc;

// What lies between the two, which must be there.
inline std::string between(const std::string &text, std::string_view begin, std::string_view end)
{
    const std::size_t from = text.find(begin);
    const std::size_t to = text.find(end, from + begin.size());
    if (from == std::string::npos || to == std::string::npos) {
        ADD_FAILURE() << begin << " is missing";
        return {};
    }
    return text.substr(from + begin.size(), to - from - begin.size());
}

inline bool contains(std::string_view text, std::string_view part)
{
    return text.find(part) != std::string_view::npos;
}

inline std::size_t count_of(std::string_view text, std::string_view part)
{
    std::size_t count = 0;
    for (std::size_t at = text.find(part); at != text.npos; at = text.find(part, at + 1)) {
        ++count;
    }
    return count;
}

inline std::string flat(const TypedEvents &events, const WriterOptions &options = {})
{
    const std::string xml = written("fodt", events, options).text;
    EXPECT_EQ(OdfFacts(xml).fault(), "");
    return xml;
}

// The paragraphs, a line each.
inline std::string body(const TypedEvents &events, const WriterOptions &options = {})
{
    return between(flat(events, options), "<office:text>\n", "</office:text>");
}

// Of one line of text, without the paragraph's tags.
inline std::string text_of(std::string_view bytes)
{
    return between(body(TypedEvents().line(bytes)), "<text:p text:style-name=\"Standard\">",
                   "</text:p>\n");
}

// The style of the only paragraph that has one of its own.
inline std::string style(const TypedEvents &events)
{
    const std::string xml = flat(events);
    const std::string name = between(body(events), "<text:p text:style-name=\"", "\"");
    return name + ":" +
           between(xml,
                   "<style:style style:name=\"" + name +
                       "\" style:family=\"paragraph\" style:parent-style-name=",
                   "</style:style>");
}

inline WriterOptions with_commands()
{
    WriterOptions options;
    options.commands = true;
    return options;
}

} // namespace tests
