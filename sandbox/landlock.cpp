// A kernel refuses rights that it does not know, and each version of the ABI brought some. So
// it is asked for its version first, and the rights of that version are asked away.
//
// The C library has no functions for these calls, and <linux/landlock.h> is as old as the
// machine that compiles this, so what came after the first version is spelled out here.
// Test: tests/sandbox/sandbox_test.cpp.
#include "sandbox/landlock.h"

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <linux/landlock.h>
#include <sys/syscall.h>
#include <unistd.h>
#include <utility>

namespace pfsdoc::sandbox {

namespace {

// struct landlock_ruleset_attr of version 6. Older kernels take it where the members that
// they do not know are 0.
struct Rights {
    uint64_t files;
    uint64_t network;
    uint64_t scope;
};

// What a version brought. Rights to files are bits from the lowest upwards, so the highest
// one tells all.
struct Version {
    uint64_t highest_file_right;
    uint64_t network;
    uint64_t scope;
};
constexpr uint64_t file_refer = uint64_t{1} << 13;
constexpr uint64_t file_truncate = uint64_t{1} << 14;
constexpr uint64_t file_ioctl_device = uint64_t{1} << 15;
constexpr uint64_t network_bind_and_connect_tcp = 0b11;
constexpr uint64_t scope_abstract_sockets_and_signals = 0b11;
constexpr Version versions[] = {
    {LANDLOCK_ACCESS_FS_MAKE_SYM, 0, 0},
    {file_refer, 0, 0},
    {file_truncate, 0, 0},
    {file_truncate, network_bind_and_connect_tcp, 0},
    {file_ioctl_device, network_bind_and_connect_tcp, 0},
    {file_ioctl_device, network_bind_and_connect_tcp, scope_abstract_sockets_and_signals},
};
constexpr int newest_version = static_cast<int>(std::size(versions));

// 0 or less where the kernel has none.
int kernel_version()
{
    return static_cast<int>(
        ::syscall(SYS_landlock_create_ruleset, nullptr, 0, LANDLOCK_CREATE_RULESET_VERSION));
}

// All rights that the version knows.
Rights rights_of(int version)
{
    const Version &known = versions[static_cast<std::size_t>(version - 1)];
    return {(known.highest_file_right << 1) - 1, known.network, known.scope};
}

} // namespace

LandlockRules landlock_rules()
{
    const int version = std::min(kernel_version(), newest_version);
    if (version <= 0) {
        return {{}, 0, errno};
    }
    const Rights rights = rights_of(version);
    // No rule is added, so nothing is left.
    base::Descriptor rules(
        static_cast<int>(::syscall(SYS_landlock_create_ruleset, &rights, sizeof rights, 0)));
    const int error_number = errno;
    return rules.get() < 0 ? LandlockRules{{}, 0, error_number}
                           : LandlockRules{std::move(rules), version, 0};
}

bool restrict_by_landlock(int rules)
{
    return ::syscall(SYS_landlock_restrict_self, rules, 0) == 0;
}

} // namespace pfsdoc::sandbox
