// Reading on from saved positions so that nothing of it shows: a document read with a stop at
// every paragraph break gives the very events of one read in a single call.
//
// Every read call of the module begins with announcements: the tab stops, the five
// attributes, the margins, and then, once no header or footer lines are pending, an indents
// reset, alignment, font and line spacing. In a resumed call they repeat what is known and
// are left out. What complicates it is that a single call also sends some of these same
// events at the stop:
//
//   after a body paragraph that reported indents, a reset of them, in the kinds that undo
//   indents (all but Professional Write): the announced reset then stands for it;
//   before the second line of a header or footer block, an indents reset and an alignment:
//   the announced ones stand for them;
//   but when the first thing that a resumed call does is to close such a block, nothing.
//
// In the last two cases the next event decides, so the pair is held back until it is here.
// Test: tests/lib/reading/resume_test.cpp.
#pragma once

#include "lib/reading/session.h"
#include "pfsdoc/events.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <utility>

namespace pfsdoc::reading {

// Whether a kind of document undoes a paragraph's indents after its break.
enum class IndentsReset { never, after_break };

// What becomes of margins that a resumed read announces. A margin record in a Professional
// Write text changes them, and the module reports it at the start of the next read only: a
// read without stops would not have reported it.
enum class AnnouncedMargins { dropped, passed_on_if_changed };

// What a stitcher knows at a stop from what came before it.
struct StitcherContext {
    bool in_block = false;
    bool indents_reported = false;  // by the paragraph whose break came last
    std::optional<Margins> margins; // passed on last
};

// Stands between a session and a sink: asks for a stop at every paragraph break, and passes
// on what a read without stops would have delivered. What the sink answers is not used.
class Stitcher final : public EventSink {
public:
    Stitcher(EventSink &sink, IndentsReset reset,
             AnnouncedMargins announced_margins = AnnouncedMargins::dropped)
        : sink_(sink), reset_(reset), announced_margins_(announced_margins)
    {
    }

    // The next events are those of a read call that goes on after the last paragraph break.
    void resume();
    StitcherContext context() const
    {
        return context_;
    }
    // The same, after a stop that another stitcher has seen.
    void resume(const StitcherContext &context);
    int32_t on_event(const Event &event, uint32_t offset) override;
    void on_characters(std::string_view bytes) override;

private:
    struct Held {
        Event event;
        uint32_t offset;
    };
    // What the next event is to be taken for.
    enum class Expect { anything, announcements, block_pair, block_verdict, body_start };

    bool is_dropped(const Event &event, uint32_t offset);
    bool drop_announcement(const Event &event, uint32_t offset);
    bool is_wanted_margins(const Event &event) const;
    bool hold_pair(const Event &event, uint32_t offset);
    bool judge_pair(const Event &event);
    bool drop_body_start(const Event &event);
    void pass_on(const Event &event, uint32_t offset);

    EventSink &sink_;
    IndentsReset reset_;
    AnnouncedMargins announced_margins_;
    Expect expect_ = Expect::anything;
    bool margins_seen_ = false;               // of the announcements being dropped,
    std::size_t attributes_seen_ = 0;         // and how many attributes
    std::array<std::optional<Held>, 2> pair_; // indents reset and alignment, held back
    StitcherContext context_;
    std::optional<Event> last_; // passed on
};

// Puts margins that are announced after a paragraph's break before it: a record within the
// paragraph has set them, so they are the paragraph's own. To be put behind a Stitcher that
// passes them on. What the sink answers is not used.
class MarginFollower final : public EventSink {
public:
    explicit MarginFollower(EventSink &sink) : sink_(sink) {}

    // Whether a break has not been passed on yet.
    bool holds() const
    {
        return held_.has_value();
    }

    int32_t on_event(const Event &event, uint32_t offset) override;
    void on_characters(std::string_view bytes) override;

private:
    void release();

    EventSink &sink_;
    std::optional<std::pair<Event, uint32_t>> held_; // a paragraph's break
};

// Reads a whole document with a stop at every paragraph break, each time going on in the
// next of the sessions, which must all have opened it: from the saved position, never from
// where that session happens to stand. False when the file refuses a position.
bool read_with_stops(std::span<Session *const> sessions, Stitcher &stitcher);

} // namespace pfsdoc::reading
