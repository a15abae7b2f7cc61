// The event stream as text, one event a line: for people who want to see what the module
// reports, and for the tests' golden files, so what a line says may not change lightly.
//
// Tab stops stand indented between "tabs" and "tabs end", header and footer lines between
// "block open" and "block close". Every argument can be read back: those that always have
// the same value are left out when they have it and printed when they do not. Test:
// tests/lib/writers/trace_test.cpp.
#pragma once

#include "pfsdoc/events.h"
#include "pfsdoc/output.h"
#include "pfsdoc/writer.h"

#include <cstdint>
#include <string>

namespace pfsdoc::writers {

struct TraceOptions {
    bool offsets = false; // the source offset as first column
    // Joins consecutive characters into one line, text "...", with \" and \\ and \xNN as
    // escapes, and special characters likewise; the offset is then that of the first.
    bool fold = false;
};

class TraceWriter final : public EventWriter {
public:
    TraceWriter(Output &output, const TraceOptions &options) : output_(output), options_(options) {}

    int32_t on_event(const Event &event, uint32_t offset) override;
    // Ends the last line; to be called once after the last event.
    void finish() override;

private:
    enum class Run { none, text, special };

    void begin_line(uint32_t offset);
    bool fold(const Event &event, uint32_t offset);
    void end_run();

    Output &output_;
    TraceOptions options_;
    unsigned depth_ = 0;
    Run run_ = Run::none;
};

// One event as its line says it, without indentation.
std::string trace_text(const Event &event);

} // namespace pfsdoc::writers
