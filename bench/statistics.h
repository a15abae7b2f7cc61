// Figures from a noisy machine: what one thread costs, and medians of what was measured.
#pragma once

#include <vector>

namespace bench {

// CPU time of this thread, in seconds: what others do on the machine does not count.
double thread_seconds();

// Of an even number, the mean of the two in the middle. The list must not be empty.
double median(std::vector<double> values);

// The quarters' boundaries below and above the median.
struct Spread {
    double median;
    double lower;
    double upper;
};
Spread spread_of(std::vector<double> values);

} // namespace bench
