#include "lib/reading/resume.h"

#include "pfsdoc/attribute_names.h"

namespace pfsdoc::reading {

namespace {

constexpr int32_t stop = 1;

const Break *as_break(const Event &event, VwBreak code)
{
    const auto *found = std::get_if<Break>(&event);
    return found != nullptr && found->code == code ? found : nullptr;
}

bool is_announced_reset(const Event &event)
{
    const auto *indents = std::get_if<Indents>(&event);
    return indents != nullptr && *indents == Indents{0, 0, 0};
}

// A report for a paragraph, as against a reset: a paragraph without indents reports none.
bool is_indents_report(const Event &event)
{
    return std::holds_alternative<Indents>(event) && !is_announced_reset(event);
}

bool is_announced_alignment(const Event &event)
{
    const auto *alignment = std::get_if<Alignment>(&event);
    return alignment != nullptr && alignment->value == VW_ALIGN_LEFT;
}

// A block is closed by turning its attributes off, if any are on, and its break.
bool closes_block(const Event &event)
{
    const auto *attribute = std::get_if<AttributeChange>(&event);
    return (attribute != nullptr && attribute->on == 0) ||
           as_break(event, VW_BREAK_BLOCK_CLOSE) != nullptr;
}

} // namespace

void Stitcher::resume()
{
    expect_ = Expect::announcements;
    margins_seen_ = false;
    attributes_seen_ = 0;
}

void Stitcher::resume(const StitcherContext &context)
{
    context_ = context;
    resume();
}

int32_t Stitcher::on_event(const Event &event, uint32_t offset)
{
    if (!is_dropped(event, offset)) {
        pass_on(event, offset);
    }
    return as_break(event, VW_BREAK_PARAGRAPH) != nullptr ? stop : 0;
}

void Stitcher::on_characters(std::string_view bytes)
{
    if (expect_ != Expect::anything) {
        EventSink::on_characters(bytes); // one of them may be what decides
        return;
    }
    last_ = Character{static_cast<unsigned char>(bytes.back())};
    sink_.on_characters(bytes);
}

bool Stitcher::is_dropped(const Event &event, uint32_t offset)
{
    switch (expect_) {
    case Expect::announcements: return drop_announcement(event, offset);
    case Expect::block_pair: return hold_pair(event, offset);
    case Expect::block_verdict: return judge_pair(event);
    case Expect::body_start: return drop_body_start(event);
    case Expect::anything: break;
    }
    return false;
}

bool Stitcher::is_wanted_margins(const Event &event) const
{
    return announced_margins_ == AnnouncedMargins::passed_on_if_changed &&
           std::holds_alternative<Margins>(event) && context_.margins != std::get<Margins>(event);
}

// Tab stops, then margins and attributes in the order of the kind's reader.
bool Stitcher::drop_announcement(const Event &event, uint32_t offset)
{
    margins_seen_ = margins_seen_ || std::holds_alternative<Margins>(event);
    if (std::holds_alternative<AttributeChange>(event)) {
        ++attributes_seen_;
    }
    if (margins_seen_ && attributes_seen_ == attribute_names.size()) {
        expect_ = context_.in_block ? Expect::block_pair : Expect::body_start;
    }
    if (is_wanted_margins(event)) {
        pass_on(event, offset);
    }
    return true;
}

bool Stitcher::hold_pair(const Event &event, uint32_t offset)
{
    const bool is_first = !pair_[0];
    pair_[is_first ? 0 : 1] = Held{event, offset};
    if (!is_first) {
        expect_ = Expect::block_verdict;
    }
    return true;
}

bool Stitcher::judge_pair(const Event &event)
{
    expect_ = Expect::anything;
    for (std::optional<Held> &held : pair_) {
        if (held && !closes_block(event)) {
            pass_on(held->event, held->offset);
        }
        held.reset();
    }
    return false;
}

bool Stitcher::drop_body_start(const Event &event)
{
    if (is_announced_reset(event)) {
        return !(reset_ == IndentsReset::after_break && context_.indents_reported);
    }
    if (std::holds_alternative<LineSpacing>(event)) {
        expect_ = Expect::anything;
        return true;
    }
    return is_announced_alignment(event) || std::holds_alternative<Font>(event);
}

void Stitcher::pass_on(const Event &event, uint32_t offset)
{
    if (as_break(event, VW_BREAK_PARAGRAPH) != nullptr) {
        context_.indents_reported = last_ && is_indents_report(*last_);
    }
    context_.in_block = (context_.in_block || as_break(event, VW_BREAK_BLOCK_OPEN) != nullptr) &&
                        as_break(event, VW_BREAK_BLOCK_CLOSE) == nullptr;
    if (const auto *margins = std::get_if<Margins>(&event)) {
        context_.margins = *margins;
    }
    last_ = event;
    sink_.on_event(event, offset);
}

int32_t MarginFollower::on_event(const Event &event, uint32_t offset)
{
    if (held_ && !std::holds_alternative<Margins>(event)) {
        release();
    }
    if (as_break(event, VW_BREAK_PARAGRAPH) != nullptr) {
        held_ = {event, offset};
    } else {
        sink_.on_event(event, offset);
    }
    return 0;
}

void MarginFollower::on_characters(std::string_view bytes)
{
    if (held_) {
        release();
    }
    sink_.on_characters(bytes);
}

void MarginFollower::release()
{
    sink_.on_event(held_->first, held_->second);
    held_.reset();
}

bool read_with_stops(std::span<Session *const> sessions, Stitcher &stitcher)
{
    std::size_t turn = 0;
    sessions[turn]->read(stitcher);
    while (!sessions[turn]->ended()) {
        const Checkpoint checkpoint = sessions[turn]->checkpoint();
        turn = (turn + 1) % sessions.size();
        if (!sessions[turn]->go_to(checkpoint)) {
            return false;
        }
        stitcher.resume();
        sessions[turn]->read(stitcher);
    }
    return true;
}

} // namespace pfsdoc::reading
