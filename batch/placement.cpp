#include "placement.h"

#include <chrono>
#include <utility>

namespace pfsdoc {

namespace {

bool ends_the_run(const Status &fault)
{
    return fault && fault->kind != ErrorKind::usage;
}

std::vector<PlacedOutput> place(const OutputFolder &folder, std::vector<WholeOutput> outputs)
{
    const Status unsynced = folder.sync();
    std::vector<PlacedOutput> placed;
    for (WholeOutput &whole : outputs) {
        placed.push_back({whole.file, whole.status, unsynced ? unsynced : whole.output.commit()});
        if (ends_the_run(placed.back().fault)) {
            break;
        }
    }
    return placed;
}

} // namespace

// Some hundred of them wait: too many to keep their descriptors.
void Placement::gather(WholeOutput output)
{
    output.output.close();
    gathered_.push_back(std::move(output));
}

// Where no thread can be had, finish() does its work.
void Placement::begin()
{
    placing_ = std::async(place, std::cref(folder_), std::exchange(gathered_, {}));
}

bool Placement::is_over() const
{
    return placing_.wait_for(std::chrono::seconds(0)) != std::future_status::timeout;
}

std::vector<PlacedOutput> Placement::finish()
{
    return placing_.get();
}

void Placement::pause() const
{
    if (is_under_way()) {
        placing_.wait();
    }
}

} // namespace pfsdoc
