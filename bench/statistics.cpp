#include "bench/statistics.h"

#include <algorithm>
#include <cstddef>
#include <ctime>

namespace bench {

namespace {

// Between the two nearest of sorted values.
double quantile(const std::vector<double> &sorted, double share)
{
    const double place = share * static_cast<double>(sorted.size() - 1);
    const auto below = static_cast<std::size_t>(place);
    const std::size_t above = std::min(below + 1, sorted.size() - 1);
    return sorted[below] + (place - static_cast<double>(below)) * (sorted[above] - sorted[below]);
}

} // namespace

double thread_seconds()
{
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
}

double median(std::vector<double> values)
{
    return spread_of(std::move(values)).median;
}

Spread spread_of(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return {quantile(values, 0.5), quantile(values, 0.25), quantile(values, 0.75)};
}

} // namespace bench
