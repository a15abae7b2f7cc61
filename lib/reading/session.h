// One document being read: an instance of the module, its stream, and the output routines
// that turn the module's calls into typed events.
//
// The module hands two 32-bit words back with each call; together they are the address of
// the session. Nothing may be thrown through the module's frames: an exception of the sink
// is kept, the read is stopped at its next paragraph end with nothing more delivered, and it
// is thrown again when the module has returned. Characters are held back until something else
// comes, and handed on together. Test: tests/lib/reading/session_test.cpp.
#pragma once

#include "pfsdoc/events.h"
#include "pfsdoc/module.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <memory>
#include <string>

namespace pfsdoc::reading {

// Whether events carry the source offset: a question to the stream for each of them.
enum class Offsets { none, wanted };

// Where reading can be resumed: in any session on the same document, and no other.
struct Checkpoint {
    uint32_t position = 0;
    std::array<uint8_t, VW_SAVED_STATE_SIZE> state{};
};

class Session {
public:
    // The file must outlive the session. Fails only for want of memory.
    static Result<std::unique_ptr<Session>> create(const Module &module, VwBlockFile *file,
                                                   Offsets offsets = Offsets::none);
    ~Session();
    Session(const Session &) = delete;
    Session &operator=(const Session &) = delete;

    // Recognises the document and reads its header; false when it is of no known kind. Must
    // have succeeded before anything below is called. The name belongs to the file id.
    bool open(int32_t file_id);
    const std::string &kind_name() const
    {
        return kind_name_;
    }

    // Deliver events to the sink, of a section's start and of the text. A read ends at a
    // paragraph break that the sink answers with 1, or with the document.
    void section(EventSink &sink);
    void read(EventSink &sink);
    // Whether the end of the document has been reported since the last go_to.
    bool ended() const
    {
        return ended_;
    }

    uint32_t tell() const;
    bool seek(uint32_t position);
    std::array<uint8_t, VW_SAVED_STATE_SIZE> save() const;
    void restore(const std::array<uint8_t, VW_SAVED_STATE_SIZE> &state);

    // From here on tab stops that a read announces are not delivered: for a kind whose text changes
    // none, after its first read.
    void ignore_tab_stops();

    // save and tell, restore and seek: to be done together.
    Checkpoint checkpoint() const
    {
        return {tell(), save()};
    }
    bool go_to(const Checkpoint &checkpoint);

    // For the output routines.
    int32_t deliver(const Event &event);
    int32_t deliver_character(int32_t byte)
    {
        return held_count_ < most_held && is_byte(byte) ? hold(byte)
                                                        : deliver_character_slowly(byte);
    }

private:
    static constexpr std::size_t most_held = 1024;
    static constexpr std::size_t none_is_held = most_held + 1; // for now

    static constexpr bool is_byte(int32_t value)
    {
        return value >= 0 && value <= UINT8_MAX;
    }
    static constexpr std::size_t held_at_first(Offsets offsets)
    {
        return offsets == Offsets::wanted ? none_is_held : 0;
    }
    int32_t hold(int32_t byte)
    {
        const std::size_t count = held_count_; // for all the compiler knows, the byte changes it
        held_[count] = static_cast<char>(byte);
        held_count_ = count + 1;
        return 0;
    }
    int32_t deliver_character_slowly(int32_t byte);
    explicit Session(const Module &module, Offsets offsets);
    void set_up(VwBlockFile *file);
    template <typename Call> void run(EventSink &sink, Call call);
    template <typename Call> int32_t guarded(Call call);
    void deliver_held();

    Module module_;
    Offsets offsets_;
    VwInstance *instance_ = nullptr;
    VwCharStream *stream_ = nullptr;
    EventSink *sink_ = nullptr; // during a call only
    std::exception_ptr failure_;
    bool ended_ = false;
    std::string kind_name_;

    // Characters that have come and not been handed on. Most events are characters, and
    // most sinks want text. None are held for a sink that wants offsets or has failed.
    std::array<char, most_held> held_;
    std::size_t held_count_; // or none_is_held
};

} // namespace pfsdoc::reading
