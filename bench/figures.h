// The measurements, by name, and the goals that they are compared with.
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
    // For a figure that is recomputed from others.
    void set(const std::string &name, double value)
    {
        values_[name] = {value};
    }
    // Every figure, with its median and quartiles.
    void print() const;
    const std::map<std::string, std::vector<double>> &values() const
    {
        return values_;
    }

private:
    std::map<std::string, std::vector<double>> values_;
};

// Prints the goals with the medians that were measured; a goal that was not measured is marked.
// True if none was missed.
bool print_goals(const Figures &figures);

} // namespace bench
