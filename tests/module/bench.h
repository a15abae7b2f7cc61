// A recording host for tests that access the module's internals: a zeroed instance over bytes that
// need not be a document, and shorthands for the announcements of each read call.
#pragma once

#include "tests/support/raw_documents.h"
#include "tests/support/recording_host.h"
#include "vs_pfs/filter_interface.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <string>
#include <utility>

namespace tests {

class Bench : public RecordingHost {
public:
    explicit Bench(std::string document) : RecordingHost(std::move(document))
    {
        const VwInstance kept = *instance;
        std::memset(instance, 0, sizeof *instance); // with what lies between the members
        std::copy(std::begin(kept.routines), std::end(kept.routines), instance->routines);
        instance->user1 = kept.user1;
        instance->user2 = kept.user2;
        instance->state.stream = stream;
        instance->state.saved.fontValue = 24;
    }

    vs_pfs::FilterState &state()
    {
        return instance->state;
    }
    vs_pfs::SavedState &saved()
    {
        return instance->state.saved;
    }
    uint32_t tell()
    {
        return VwCharTell(stream);
    }
    // Opens and returns whether that succeeded.
    bool opens()
    {
        return open() == 0;
    }
};

// Every attribute reported again, none of them on.
inline const std::string attributes_off = "4 2 0 | 4 4 0 | 4 3 0 | 4 11 0 | 4 10 0 |";
inline const std::string no_tab_stops = "8 | 9 |";
// What closes the announcements of each read call.
inline const std::string line_defaults = "7 0 0 0 | 6 1 | 5 24 | 46 1 240 0 0 |";

} // namespace tests
