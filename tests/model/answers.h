// What a host returns at paragraph ends. Model and module each get a copy, so that both get the
// same answers.
#pragma once

#include "tests/model/random.h"

#include <cstdint>

namespace tests::model {

class Answers {
public:
    enum class To { none, all, some };

    Answers(To stop_at, uint64_t seed) : stop(stop_at), random(seed) {}

    // The answer at the next paragraph end. Only 1 stops a read; 0x10001 is 1 in its low half.
    int32_t next()
    {
        switch (stop) {
        case To::none: return 0;
        case To::all: return 1;
        case To::some: break;
        }
        return random.percent(40) ? 1 : random.one_of({0, 2, -1, 0x10001, 256});
    }

    To stops() const
    {
        return stop;
    }

private:
    To stop;
    Random random;
};

} // namespace tests::model
