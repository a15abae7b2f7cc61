#include "batch/sandboxed/limits.h"

#include "sandbox/shadow_memory.h"

#include <algorithm>
#include <fstream>
#include <sys/resource.h>
#include <unistd.h>

namespace pfsdoc::batch {

namespace {

void limit(__rlimit_resource resource, uint64_t value)
{
    rlimit now{};
    ::getrlimit(resource, &now);
    now.rlim_cur = static_cast<rlim_t>(std::min<uint64_t>(now.rlim_cur, value));
    now.rlim_max = now.rlim_cur;
    ::setrlimit(resource, &now);
}

} // namespace

uint64_t address_space()
{
    uint64_t pages = 0;
    std::ifstream("/proc/self/statm") >> pages;
    return pages * static_cast<uint64_t>(::sysconf(_SC_PAGESIZE));
}

void limit_resources(const ResourceLimits &limits)
{
    limit(RLIMIT_FSIZE, limits.file_size);
    limit(RLIMIT_CORE, 0);
    if (!sandbox::memory_is_shadowed) {
        limit(RLIMIT_AS, limits.address_space);
    }
}

} // namespace pfsdoc::batch
