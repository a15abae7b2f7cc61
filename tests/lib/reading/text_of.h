// Events in, the whole text out: for the tests of the text writer.
#pragma once

#include "lib/writers/text_writer.h"

#include "tests/lib/reading/typed_events.h"

#include <string>
#include <string_view>

namespace tests {

inline std::string text(const TypedEvents &events, const pfsdoc::WriterOptions &options = {})
{
    pfsdoc::StringOutput output;
    pfsdoc::writers::TextWriter writer(output, options);
    events.tell(writer);
    writer.finish();
    return output.text;
}

inline pfsdoc::WriterOptions without_page_breaks()
{
    pfsdoc::WriterOptions options;
    options.page_breaks = false;
    return options;
}

inline pfsdoc::WriterOptions with_commands()
{
    pfsdoc::WriterOptions options;
    options.commands = true;
    return options;
}

// Expected text that begins on a new line, so that its columns are visible.
inline std::string page_text(std::string_view written)
{
    return std::string(written.substr(1));
}

// A page of the columns 0 to 19, without a left margin: the layout is easiest to see there.
inline TypedEvents narrow_page()
{
    TypedEvents events;
    events.margins(0, 19);
    return events;
}

} // namespace tests
