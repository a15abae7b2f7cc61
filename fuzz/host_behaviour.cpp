// A host that does in its output routines, and between read calls, what the input specifies: a
// frame, the length of the list of actions, the actions, then the text. Each action waits for a
// number of output calls.
#include "fuzz/fuzz_host.h"
#include "fuzz/fuzz_input.h"

#include <memory>
#include <optional>

namespace {

enum Action : uint8_t {
    answer_one,
    answer_oddly,
    ask_position,
    read_another, // reads another document from within a routine
    seek_inside,  // forbidden: may garble the text, nothing worse
    forget_routine,
    take_checkpoint, // at the end of this read call
    go_back          // to the remembered position
};

constexpr int32_t odd_answers[] = {-1, 2, 0x10001, INT32_MIN, INT32_MAX, 13};
// Routines without which the guard still understands the others.
constexpr int32_t forgettable[] = {VW_SO_CHARACTER, VW_SO_SPECIAL_CHARACTER, VW_SO_PAGE_BREAK,
                                   VW_SO_ALIGNMENT, VW_SO_INDENTS,           VW_SO_MARGINS};

template <typename T, std::size_t Size> T pick(const T (&values)[Size], unsigned index)
{
    return values[index % Size];
}

class Behaviour {
public:
    Behaviour(const fuzz::Frame &frame_, std::string actions_, const std::string &document)
        : frame(frame_), actions(std::move(actions_)),
          host(document, actions.size() * document.size()), other(document)
    {
        host.file.most_per_read = frame.most_per_read();
        host.answer = [this](const fuzz::Call &) { return perform(); };
        other_open = other.open();
    }

    void run()
    {
        if (!host.open()) {
            return;
        }
        do {
            host.read();
            host.register_routines();
            between_reads();
        } while (!host.document_ended || next < actions.size());
    }

private:
    int32_t perform()
    {
        const int32_t usual = frame.stop() ? 1 : 0;
        if (next >= actions.size() || waited++ < action() >> 3) {
            return usual;
        }
        const uint8_t parameter = action();
        waited = 0;
        ++next;
        switch (parameter & 7) {
        case answer_one: return 1;
        case answer_oddly: return pick(odd_answers, parameter >> 3);
        case ask_position: ask(); break;
        case read_another: read_other(); break;
        case seek_inside: seek(parameter); break;
        case forget_routine: host.unregister(pick(forgettable, parameter >> 3)); break;
        case take_checkpoint: wants_checkpoint = true; break;
        default: wants_return = true; break;
        }
        return usual;
    }

    uint8_t action() const
    {
        return static_cast<uint8_t>(actions[next]);
    }

    void ask()
    {
        uint32_t position = 0;
        fuzz::require(VwStreamTell(host.stream, &position) == 0, "a position that failed");
    }

    void read_other()
    {
        if (other_open && !other.document_ended) {
            other.read();
        }
    }

    void seek(uint8_t parameter)
    {
        constexpr uint32_t stride = 97;
        const uint32_t position = (parameter >> 3) * stride;
        host.guard.expect_foreign_state();
        fuzz::require(VwStreamSeek(host.stream, &position) == 0, "a seek that failed");
    }

    void between_reads()
    {
        if (wants_return && checkpoint) {
            host.go_to(*checkpoint);
        }
        if (wants_checkpoint && !host.document_ended) {
            checkpoint = host.checkpoint();
        }
        wants_checkpoint = wants_return = false;
    }

    fuzz::Frame frame;
    std::string actions;
    std::size_t next = 0;
    unsigned waited = 0;
    fuzz::Host host;
    fuzz::Host other;
    bool other_open = false;
    bool wants_checkpoint = false;
    bool wants_return = false;
    std::optional<fuzz::Checkpoint> checkpoint;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, std::size_t size)
{
    fuzz::Input input(data, size);
    const fuzz::Frame frame = fuzz::take_frame(input);
    std::string actions = input.take(input.byte() % 64);
    Behaviour behaviour(frame, std::move(actions), fuzz::document_of_any_kind(frame, input.rest()));
    behaviour.run();
    return 0;
}
