// The destination of a writer's bytes.
#pragma once

#include "pfsdoc/export.h"

#include <string>
#include <string_view>

namespace pfsdoc {

class PFSDOC_API Output {
public:
    virtual ~Output() = default;
    // Appends the bytes, which are valid during the call only. A destination that fails remembers
    // it, or throws ReadingStopped.
    virtual void write(std::string_view bytes) = 0;
};

class PFSDOC_API StringOutput final : public Output {
public:
    void write(std::string_view bytes) override
    {
        text.append(bytes);
    }

    std::string text;
};

} // namespace pfsdoc
