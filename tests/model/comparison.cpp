#include "tests/model/comparison.h"

#include "tests/model/module_host.h"
#include "tests/model/saved_state.h"

#include <algorithm>
#include <memory>
#include <utility>
#include <vector>

namespace tests::model {

namespace {

// A point where reading can resume, in the terms of either side: past the end of the data the two
// may count positions differently.
struct SavedPoint {
    SavedBytes module_state;
    SavedState model_state;
    uint32_t module_position = 0;
    uint32_t model_position = 0;
};

class Comparison {
public:
    Comparison(const std::string &module_document, const std::string &model_document,
               const Plan &reading_plan)
        : plan(reading_plan), random(plan.seed), document(module_document),
          model(model_document, Answers(plan.stop_at, plan.seed)), host(new_host(model.answers))
    {
    }

    // Whether model and module agree; if not, `difference` says how.
    bool run();

    Difference difference;

private:
    std::unique_ptr<ModuleHost> new_host(const Answers &answers) const
    {
        return std::make_unique<ModuleHost>(document, plan.most_per_read, answers);
    }

    bool open();
    bool read();
    bool same_events();
    bool same_states_at_events();
    bool same_calls();
    bool same_state();
    bool differ(std::string what, std::size_t call);
    std::string difference_in(const SavedState &expected, const SavedState &recorded) const;
    void go_on();
    void keep_point();
    void resume(const SavedPoint &point);
    SavedPoint foreign_point();

    const Plan &plan;
    Random random;
    const std::string &document;
    Model model;
    std::unique_ptr<ModuleHost> host;
    std::vector<SavedPoint> points;
    int32_t jumps_left = 6; // reading that always jumps back would never end
};

bool Comparison::differ(std::string what, std::size_t call)
{
    difference = {std::move(what), call, model.events, host->events};
    return false;
}

std::string Comparison::difference_in(const SavedState &expected, const SavedState &recorded) const
{
    return difference_of(expected, recorded, static_cast<uint32_t>(document.size()));
}

bool Comparison::same_events()
{
    const Events &expected = model.events;
    const Events &recorded = host->events;
    const auto [one, other] =
        std::mismatch(expected.begin(), expected.end(), recorded.begin(), recorded.end());
    return (one == expected.end() && other == recorded.end()) ||
           differ("the output calls differ", static_cast<std::size_t>(one - expected.begin()));
}

// The call up to which the state at `at` is in force.
std::size_t end_of(const States &states, std::size_t at, std::size_t calls)
{
    return at + 1 < states.size() ? states[at + 1].call : calls;
}

bool Comparison::same_states_at_events()
{
    const std::size_t calls = model.events.size();
    std::size_t i = 0;
    std::size_t j = 0;
    for (std::size_t call = 0; call < calls;) {
        const std::string differences = difference_in(model.states[i].state, host->states[j].state);
        if (!differences.empty()) {
            return differ("during a call " + differences, call);
        }
        const std::size_t model_end = end_of(model.states, i, calls);
        const std::size_t host_end = end_of(host->states, j, calls);
        call = std::min(model_end, host_end);
        i += model_end == call ? 1 : 0;
        j += host_end == call ? 1 : 0;
    }
    return true;
}

bool Comparison::same_calls()
{
    return same_events() && same_states_at_events();
}

bool Comparison::same_state()
{
    if (model.text.clamped_position() != host->clamped_position()) {
        return differ("the stream stands at " + std::to_string(host->clamped_position()) +
                          " instead of " + std::to_string(model.text.clamped_position()),
                      model.events.size());
    }
    const std::string differences = difference_in(model.saved, fields_of(host->saved()));
    return differences.empty() || differ(differences, model.events.size());
}

bool Comparison::open()
{
    const bool opened = VwStreamOpen(model);
    if (host->open() != opened) {
        return differ(
            opened ? "the module refuses the document" : "the module takes what is no document", 0);
    }
    VwStreamSection(model);
    host->section();
    return same_calls() && (!opened || same_state());
}

bool Comparison::read()
{
    model.forget_calls();
    host->forget_calls();
    VwStreamRead(model);
    host->read();
    return same_calls() && same_state();
}

void Comparison::keep_point()
{
    points.push_back({host->saved(), model.saved, host->position(), model.text.tell()});
}

// In another instance, so that only the saved state and the position are carried over.
void Comparison::resume(const SavedPoint &point)
{
    host = new_host(host->answers);
    host->open();
    host->go_to(point.module_state, point.module_position);
    VwStreamOpen(model);
    model.saved = point.model_state;
    model.text.seek(point.model_position);
}

SavedPoint Comparison::foreign_point()
{
    SavedPoint point{host->saved(), {}, 0, 0};
    const uint32_t changes = random.percent(50) ? random.between(1, 20) : VW_SAVED_STATE_SIZE * 3;
    for (uint32_t i = 0; i < changes; ++i) {
        // most of the meaning is in the first bytes
        const uint32_t range = random.percent(50) ? 22 : VW_SAVED_STATE_SIZE;
        point.module_state[random.below(range)] = static_cast<uint8_t>(random.below(256));
    }
    point.model_state = fields_of(point.module_state);
    point.module_position = random.below(document.size() + 10);
    point.model_position = point.module_position;
    return point;
}

void Comparison::go_on()
{
    if (jumps_left > 0 && random.percent(plan.foreign_percent)) {
        --jumps_left;
        resume(foreign_point());
    } else if (random.percent(plan.resume_percent)) {
        keep_point();
        const bool jump = jumps_left > 0 && random.percent(30);
        jumps_left -= jump ? 1 : 0;
        resume(jump ? points[random.below(points.size())] : points.back());
    }
}

bool Comparison::run()
{
    if (!open()) {
        return false;
    }
    if (model.opened.formatType == 0) {
        return read();
    }
    const std::size_t most_reads = 10 * document.size() + 1000;
    uint32_t reads_after_end = plan.reads_after_end;
    go_on();
    for (std::size_t reads = 0; reads < most_reads; ++reads) {
        if (!read()) {
            return false;
        }
        if (model.ended && reads_after_end-- == 0) {
            return true;
        }
        go_on();
    }
    return differ("the end of the document was never reported", model.events.size());
}

std::string text_around(const Events &events, std::size_t at)
{
    constexpr std::size_t lines_before = 12;
    constexpr std::size_t lines_after = 6;
    std::string text;
    const std::size_t end = std::min(events.size(), at + lines_after);
    for (std::size_t i = at > lines_before ? at - lines_before : 0; i < end; ++i) {
        text += (i == at ? "  > " : "    ") + std::to_string(events[i].position) + ": " +
                tests::text_of(Calls{events[i].call});
    }
    return text + (at >= events.size() ? "  > nothing more\n" : "");
}

} // namespace

std::string text_of(const Plan &plan)
{
    const char *stops = plan.stop_at == Answers::To::none  ? "nowhere"
                        : plan.stop_at == Answers::To::all ? "at every paragraph end"
                                                           : "at some paragraph ends";
    return std::string("stops ") + stops + ", at most " + std::to_string(plan.most_per_read) +
           " bytes a read, resumes at " + std::to_string(plan.resume_percent) +
           " % of stops, takes a foreign state at " + std::to_string(plan.foreign_percent) +
           " %, reads on " + std::to_string(plan.reads_after_end) + " times, seed " +
           std::to_string(plan.seed);
}

std::string text_of(const Difference &difference)
{
    const std::size_t at = difference.call;
    return difference.what + "\nmodel, from call " + std::to_string(at) + " of its last read:\n" +
           text_around(difference.expected, at) + "module:\n" +
           text_around(difference.recorded, at);
}

std::optional<Difference> compare(const std::string &module_document,
                                  const std::string &model_document, const Plan &plan)
{
    Comparison comparison(module_document, model_document, plan);
    if (comparison.run()) {
        return std::nullopt;
    }
    return std::move(comparison.difference);
}

std::optional<Difference> compare(const std::string &document, const Plan &plan)
{
    return compare(document, document, plan);
}

std::string reduced(const std::string &document, const Plan &plan)
{
    std::string smallest = document;
    int32_t steps = 5000;
    for (std::size_t length = document.size() / 2; length > 0; length /= 2) {
        for (std::size_t at = 0; at < smallest.size() && steps > 0; --steps) {
            std::string candidate = smallest;
            candidate.erase(at, length);
            if (compare(candidate, plan)) {
                smallest = std::move(candidate);
            } else {
                at += length;
            }
        }
    }
    return smallest;
}

} // namespace tests::model
