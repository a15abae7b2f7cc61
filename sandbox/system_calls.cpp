// Three lists: what is allowed, what is allowed with certain arguments only, and what is
// refused with EPERM. Whatever stands in none of them ends the process. A fourth list has what a
// process needs to start others; the second filter takes that away.
//
// The second filter is written by hand: it is installed in each process that is started, and the
// library would take longer, and memory, which that process may not have.
//
// One thing has several names on different machines (fstat, fstat64, newfstatat). All are
// listed; libseccomp leaves out those that a machine does not have. Test:
// tests/sandbox/sandbox_test.cpp.
#include "sandbox/system_calls.h"

#include <array>
#include <bit>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <fcntl.h>
#include <iterator>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <memory>
#include <seccomp.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace pfsdoc::sandbox {

namespace {

constexpr int allowed[] = {
    // Open descriptors.
    SCMP_SYS(read), SCMP_SYS(readv), SCMP_SYS(pread64), SCMP_SYS(preadv), SCMP_SYS(write),
    SCMP_SYS(writev), SCMP_SYS(pwrite64), SCMP_SYS(pwritev), SCMP_SYS(lseek), SCMP_SYS(_llseek),
    SCMP_SYS(fstat), SCMP_SYS(fstat64), SCMP_SYS(ftruncate), SCMP_SYS(ftruncate64), SCMP_SYS(fsync),
    SCMP_SYS(fdatasync), SCMP_SYS(fadvise64), SCMP_SYS(fadvise64_64), SCMP_SYS(dup), SCMP_SYS(dup2),
    SCMP_SYS(dup3), SCMP_SYS(close), SCMP_SYS(close_range),
    // Pipes of its own, by which sanitizers find out what memory there is.
    SCMP_SYS(pipe), SCMP_SYS(pipe2),
    // Open sockets.
    SCMP_SYS(send), SCMP_SYS(recv), SCMP_SYS(sendmsg), SCMP_SYS(recvmsg), SCMP_SYS(recvfrom),
    SCMP_SYS(shutdown), SCMP_SYS(poll), SCMP_SYS(ppoll), SCMP_SYS(ppoll_time64),
    // Memory.
    SCMP_SYS(brk), SCMP_SYS(munmap), SCMP_SYS(mremap), SCMP_SYS(madvise),
    // Clocks and random numbers.
    SCMP_SYS(clock_gettime), SCMP_SYS(clock_gettime64), SCMP_SYS(clock_getres),
    SCMP_SYS(clock_getres_time64), SCMP_SYS(gettimeofday), SCMP_SYS(time), SCMP_SYS(getrandom),
    // The process itself: its locks, its signals and its end.
    SCMP_SYS(getpid), SCMP_SYS(gettid), SCMP_SYS(futex), SCMP_SYS(futex_time64), SCMP_SYS(rseq),
    SCMP_SYS(sched_yield), SCMP_SYS(restart_syscall), SCMP_SYS(rt_sigaction),
    SCMP_SYS(rt_sigprocmask), SCMP_SYS(rt_sigreturn), SCMP_SYS(sigreturn), SCMP_SYS(sigaltstack),
    SCMP_SYS(exit), SCMP_SYS(exit_group)};

constexpr int refused[] = {
    // Opening and making files.
    SCMP_SYS(openat2), SCMP_SYS(creat), SCMP_SYS(mknod), SCMP_SYS(mknodat), SCMP_SYS(mkdir),
    SCMP_SYS(mkdirat), SCMP_SYS(link), SCMP_SYS(linkat), SCMP_SYS(symlink), SCMP_SYS(symlinkat),
    SCMP_SYS(memfd_create),
    // Removing, renaming and changing them.
    SCMP_SYS(unlinkat), SCMP_SYS(rmdir), SCMP_SYS(rename), SCMP_SYS(renameat), SCMP_SYS(renameat2),
    SCMP_SYS(truncate), SCMP_SYS(truncate64), SCMP_SYS(chmod), SCMP_SYS(fchmod), SCMP_SYS(fchmodat),
    SCMP_SYS(chown), SCMP_SYS(fchown), SCMP_SYS(lchown), SCMP_SYS(fchownat), SCMP_SYS(utime),
    SCMP_SYS(utimes), SCMP_SYS(utimensat), SCMP_SYS(utimensat_time64), SCMP_SYS(futimesat),
    // Looking them up.
    SCMP_SYS(stat), SCMP_SYS(stat64), SCMP_SYS(lstat), SCMP_SYS(lstat64), SCMP_SYS(statx),
    SCMP_SYS(statfs), SCMP_SYS(statfs64), SCMP_SYS(fstatfs), SCMP_SYS(fstatfs64), SCMP_SYS(access),
    SCMP_SYS(faccessat), SCMP_SYS(faccessat2), SCMP_SYS(readlink), SCMP_SYS(readlinkat),
    SCMP_SYS(getdents), SCMP_SYS(getdents64), SCMP_SYS(getcwd), SCMP_SYS(chdir), SCMP_SYS(fchdir),
    // Sockets.
    SCMP_SYS(socket), SCMP_SYS(socketpair), SCMP_SYS(connect), SCMP_SYS(bind), SCMP_SYS(listen),
    SCMP_SYS(accept), SCMP_SYS(accept4),
    // Processes, threads and programs.
    SCMP_SYS(fork), SCMP_SYS(vfork), SCMP_SYS(clone3), SCMP_SYS(execve), SCMP_SYS(execveat),
    // Terminals and devices, and what the C library asks about the machine.
    SCMP_SYS(ioctl), SCMP_SYS(uname), SCMP_SYS(sysinfo), SCMP_SYS(sched_getaffinity)};

constexpr uint32_t refusal = SCMP_ACT_ERRNO(EPERM);

// For starting processes, and for these to get ready. What becomes of it then is told here.
struct LastCall {
    int call;
    uint32_t action;
};
constexpr LastCall last_calls[] = {
    // Scratch files, and what the C library reads about languages and time zones.
    {SCMP_SYS(open), refusal},
    {SCMP_SYS(openat), refusal},
    {SCMP_SYS(unlink), refusal},
    // A process, its name and its limits.
    {SCMP_SYS(clone), refusal},
    {SCMP_SYS(prctl), refusal},
    {SCMP_SYS(getppid), SCMP_ACT_KILL_PROCESS},
    {SCMP_SYS(prlimit64), SCMP_ACT_KILL_PROCESS},
    {SCMP_SYS(getrlimit), SCMP_ACT_KILL_PROCESS},
    {SCMP_SYS(ugetrlimit), SCMP_ACT_KILL_PROCESS},
    {SCMP_SYS(setrlimit), SCMP_ACT_KILL_PROCESS},
    // Waiting for there to be room for another process.
    {SCMP_SYS(nanosleep), SCMP_ACT_KILL_PROCESS},
    {SCMP_SYS(clock_nanosleep), SCMP_ACT_KILL_PROCESS},
    {SCMP_SYS(clock_nanosleep_time64), SCMP_ACT_KILL_PROCESS},
    // The rest of the sandbox.
    {SCMP_SYS(landlock_restrict_self), SCMP_ACT_KILL_PROCESS},
    {SCMP_SYS(seccomp), SCMP_ACT_KILL_PROCESS},
};

// One argument of a call decides.
struct Condition {
    int call;
    scmp_arg_cmp argument;
};

constexpr scmp_arg_cmp is(unsigned argument, uint64_t value)
{
    return {argument, SCMP_CMP_EQ, value, 0};
}

constexpr scmp_arg_cmp is_not(unsigned argument, uint64_t value)
{
    return {argument, SCMP_CMP_NE, value, 0};
}

constexpr scmp_arg_cmp is_without(unsigned argument, uint64_t bits)
{
    return {argument, SCMP_CMP_MASKED_EQ, bits, 0};
}

// Where the arguments stand.
constexpr unsigned protection = 2; // of mmap and mprotect
constexpr unsigned stat_flags = 3;
constexpr unsigned fcntl_command = 1;
constexpr unsigned sendto_address = 4;

constexpr Condition allowed_when[] = {
    {SCMP_SYS(mmap), is_without(protection, PROT_EXEC)},
    {SCMP_SYS(mmap2), is_without(protection, PROT_EXEC)},
    {SCMP_SYS(mprotect), is_without(protection, PROT_EXEC)},
    // How the C library asks about an open descriptor: with an empty name.
    {SCMP_SYS(newfstatat), is(stat_flags, AT_EMPTY_PATH)},
    {SCMP_SYS(fstatat64), is(stat_flags, AT_EMPTY_PATH)},
    {SCMP_SYS(fcntl), is(fcntl_command, F_GETFD)},
    {SCMP_SYS(fcntl), is(fcntl_command, F_SETFD)},
    {SCMP_SYS(fcntl), is(fcntl_command, F_GETFL)},
    {SCMP_SYS(fcntl), is(fcntl_command, F_DUPFD)},
    {SCMP_SYS(fcntl), is(fcntl_command, F_DUPFD_CLOEXEC)},
    {SCMP_SYS(fcntl64), is(fcntl_command, F_GETFD)},
    {SCMP_SYS(fcntl64), is(fcntl_command, F_SETFD)},
    {SCMP_SYS(fcntl64), is(fcntl_command, F_GETFL)},
    {SCMP_SYS(fcntl64), is(fcntl_command, F_DUPFD)},
    {SCMP_SYS(fcntl64), is(fcntl_command, F_DUPFD_CLOEXEC)},
    {SCMP_SYS(sendto), is(sendto_address, 0)},
};

constexpr Condition refused_when[] = {
    // They are those of all who have the descriptor, outside of the sandbox too.
    {SCMP_SYS(fcntl), is(fcntl_command, F_SETFL)},
    {SCMP_SYS(fcntl64), is(fcntl_command, F_SETFL)},
    {SCMP_SYS(newfstatat), is_not(stat_flags, AT_EMPTY_PATH)},
    {SCMP_SYS(fstatat64), is_not(stat_flags, AT_EMPTY_PATH)},
    {SCMP_SYS(sendto), is_not(sendto_address, 0)},
};

// A filter of libseccomp. After a failure it is not loaded.
class Filter {
public:
    Filter() : context_(::seccomp_init(SCMP_ACT_KILL_PROCESS)), good_(context_ != nullptr) {}

    void set(scmp_filter_attr attribute, uint32_t value)
    {
        good_ = good_ && ::seccomp_attr_set(context_.get(), attribute, value) == 0;
    }
    void add(uint32_t action, int call)
    {
        good_ = good_ && ::seccomp_rule_add_array(context_.get(), action, call, 0, nullptr) == 0;
    }
    void add(uint32_t action, const Condition &when)
    {
        good_ = good_ &&
                ::seccomp_rule_add_array(context_.get(), action, when.call, 1, &when.argument) == 0;
    }
    bool load()
    {
        return good_ && ::seccomp_load(context_.get()) == 0;
    }

private:
    struct Release {
        void operator()(void *context) const
        {
            ::seccomp_release(context);
        }
    };

    std::unique_ptr<void, Release> context_;
    bool good_;
};

// ---- the second filter ----

constexpr uint32_t offset_of_call = offsetof(seccomp_data, nr);
// Arguments have 64 bits; a process's number is in the lower half.
constexpr uint32_t offset_of_first_argument =
    offsetof(seccomp_data, args) + (std::endian::native == std::endian::big ? sizeof(uint32_t) : 0);

constexpr sock_filter load(uint32_t offset)
{
    return BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offset);
}

constexpr sock_filter skip_one_unless(uint32_t value)
{
    return BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, value, 0, 1);
}

constexpr sock_filter end_with(uint32_t action)
{
    return BPF_STMT(BPF_RET | BPF_K, action);
}

// Of a fixed size.
class LastFilter {
public:
    void add(sock_filter instruction)
    {
        instructions_[count_++] = instruction;
    }
    bool load()
    {
        const sock_fprog program{static_cast<unsigned short>(count_), instructions_.data()};
        return ::syscall(SYS_seccomp, SECCOMP_SET_MODE_FILTER, 0, &program) == 0;
    }

private:
    static constexpr std::size_t own_instructions = 6;
    std::array<sock_filter, 2 * std::size(last_calls) + own_instructions> instructions_{};
    std::size_t count_ = 0;
};

} // namespace

bool restrict_system_calls()
{
    Filter filter;
    // Calls of another machine's table, such as the 32-bit ones, end the process too.
    filter.set(SCMP_FLTATR_ACT_BADARCH, SCMP_ACT_KILL_PROCESS);
    for (const int call : allowed) {
        filter.add(SCMP_ACT_ALLOW, call);
    }
    for (const Condition &when : allowed_when) {
        filter.add(SCMP_ACT_ALLOW, when);
    }
    for (const LastCall &last : last_calls) {
        filter.add(SCMP_ACT_ALLOW, last.call);
    }
    // For abort(); the second filter leaves it to the process itself.
    filter.add(SCMP_ACT_ALLOW, SCMP_SYS(tgkill));
    for (const int call : refused) {
        filter.add(refusal, call);
    }
    for (const Condition &when : refused_when) {
        filter.add(refusal, when);
    }
    return filter.load();
}

// Below 0 are calls that this machine does not have.
bool restrict_last_system_calls()
{
    LastFilter filter;
    filter.add(load(offset_of_call));
    for (const LastCall &last : last_calls) {
        if (last.call >= 0) {
            filter.add(skip_one_unless(static_cast<uint32_t>(last.call)));
            filter.add(end_with(last.action));
        }
    }
    filter.add(BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SCMP_SYS(tgkill), 0, 3));
    filter.add(load(offset_of_first_argument));
    filter.add(BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, static_cast<uint32_t>(::getpid()), 1, 0));
    filter.add(end_with(SCMP_ACT_KILL_PROCESS));
    filter.add(end_with(SCMP_ACT_ALLOW));
    return filter.load();
}

} // namespace pfsdoc::sandbox
