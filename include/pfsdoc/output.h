// Where writers put their bytes.
#pragma once

#include "pfsdoc/export.h"

#include <string>
#include <string_view>

namespace pfsdoc {

class PFSDOC_API Output {
public:
    virtual ~Output() = default;
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
