// Where writers put their bytes.
#pragma once

#include <string>
#include <string_view>

namespace pfsdoc {

class Output {
public:
    virtual ~Output() = default;
    virtual void write(std::string_view bytes) = 0;
};

class StringOutput final : public Output {
public:
    void write(std::string_view bytes) override
    {
        text.append(bytes);
    }

    std::string text;
};

} // namespace pfsdoc
