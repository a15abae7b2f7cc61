#include "batch/ledger.h"

#include <utility>

namespace pfsdoc::batch {

// To be called with the mutex held, as is_time_to_place().
void Ledger::call_clerk()
{
    clerk_is_called_ = true;
    clerk_.notify_one();
}

void Ledger::begin_lane()
{
    const std::lock_guard lock(mutex_);
    ++lanes_;
}

void Ledger::end_lane()
{
    const std::lock_guard lock(mutex_);
    --lanes_;
    call_clerk();
}

bool Ledger::wait_for_room()
{
    std::unique_lock lock(mutex_);
    while (!fault_ && entries_.size() >= window) {
        room_is_wanted_ = true;
        call_clerk();
        room_.wait(lock);
    }
    room_is_wanted_ = false;
    return !fault_ && !inputs_ended_;
}

void Ledger::end_inputs()
{
    const std::lock_guard lock(mutex_);
    inputs_ended_ = true;
}

Ledger::Entry &Ledger::enter()
{
    const std::lock_guard lock(mutex_);
    return entries_.emplace_back();
}

void Ledger::close(Entry &entry, FileStatus status, std::string line)
{
    const std::lock_guard lock(mutex_);
    if (fault_) {
        return;
    }
    entry.status = status;
    entry.line = std::move(line);
    if (room_is_wanted_) {
        call_clerk();
    }
}

void Ledger::gather(WholeOutput whole)
{
    const std::lock_guard lock(mutex_);
    gathered_.push_back(std::move(whole));
    if (room_is_wanted_ || gathered_.size() == placed_at_once) {
        call_clerk();
    }
}

void Ledger::stop(Error fault)
{
    const std::lock_guard lock(mutex_);
    if (!fault_) {
        fault_ = std::move(fault);
    }
    room_.notify_all();
    call_clerk();
}

bool Ledger::wait(std::chrono::milliseconds patience)
{
    std::unique_lock lock(mutex_);
    clerk_.wait_for(lock, patience, [this] { return clerk_is_called_; });
    clerk_is_called_ = false;
    return lanes_ > 0;
}

bool Ledger::is_time_to_place() const
{
    return gathered_.size() >= placed_at_once || room_is_wanted_ || lanes_ == 0 ||
           Clock::now() - placed_ >= longest_unplaced;
}

std::vector<Ledger::WholeOutput> Ledger::take_gathered()
{
    const std::lock_guard lock(mutex_);
    if (!is_time_to_place()) {
        return {};
    }
    placed_ = Clock::now();
    return std::exchange(gathered_, {});
}

void Ledger::place(Entry &entry, FileStatus status, std::string line)
{
    const std::lock_guard lock(mutex_);
    entry.status = status;
    entry.line = std::move(line);
}

std::string Ledger::take_lines(Tally &tally)
{
    const std::lock_guard lock(mutex_);
    std::string lines;
    for (; !entries_.empty() && entries_.front().status; entries_.pop_front()) {
        lines += entries_.front().line;
        tally.add(*entries_.front().status);
    }
    room_.notify_all();
    return lines;
}

Status Ledger::fault() const
{
    const std::lock_guard lock(mutex_);
    return fault_;
}

} // namespace pfsdoc::batch
