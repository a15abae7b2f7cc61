// What was measured, by name, and the goals it is held against.
#pragma once

#include "bench/statistics.h"

#include <map>
#include <string>
#include <vector>

namespace bench {

class Figures {
public:
    void add(const std::string &name, double value)
    {
        values_[name].push_back(value);
    }
    // For a figure that is worked out of others anew each time.
    void set(const std::string &name, double value)
    {
        values_[name] = {value};
    }
    // Every figure, with its median and the quarters around it.
    void print() const;
    const std::map<std::string, std::vector<double>> &values() const
    {
        return values_;
    }

private:
    std::map<std::string, std::vector<double>> values_;
};

// The goals are kept by the medians. Prints what was measured beside them; what was not
// measured is said so. True: none was missed.
bool print_goals(const Figures &figures);

} // namespace bench
