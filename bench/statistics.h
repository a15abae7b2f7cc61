// Figures from a noisy machine: one thread's processor time, and medians.
#pragma once

#include <vector>

namespace bench {

// CPU time of this thread, in seconds, regardless of other load on the machine.
double thread_seconds();

// Of an even number, the mean of the two in the middle. The list must not be empty.
double median(std::vector<double> values);

// The lower and the upper quartile.
struct Spread {
    double median;
    double lower;
    double upper;
};
Spread spread_of(std::vector<double> values);

} // namespace bench
