// What a process in the sandbox can do and what it cannot. Each test forks a child that
// enters it.
//
// What is forbidden is tried without the sandbox first: an attempt that fails or ends the
// process there as well would show nothing.
#include "tests/sandbox/sandbox_child.h"

#include <gtest/gtest.h>

#include <arpa/inet.h>
#include <cerrno>
#include <csignal>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <functional>
#include <linux/seccomp.h>
#include <netinet/in.h>
#include <sched.h>
#include <string>
#include <sys/ioctl.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/ptrace.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/un.h>
#include <unistd.h>
#include <vector>

namespace {

using namespace tests;
using pfsdoc::sandbox::Mode;
namespace fs = std::filesystem;

// ------------------------------------------------------------------ surroundings -----

constexpr char abstract_name[] = "\0pfsdoc-sandbox-test";

// What there is to get at: a folder with a file, and listening sockets. Made before the child.
struct Surroundings {
    fs::path directory;
    std::string file;
    int directory_descriptor = -1;
    int file_descriptor = -1;
    int tcp = -1;
    int unix_socket = -1;
    sockaddr_in tcp_address{};
    sockaddr_un unix_address{};
    pid_t parent = ::getpid();
};

template <typename Address> const sockaddr *plain(const Address &address)
{
    return reinterpret_cast<const sockaddr *>(&address);
}

void listen_on_tcp(Surroundings &here)
{
    here.tcp = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    here.tcp_address.sin_family = AF_INET;
    here.tcp_address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    ASSERT_EQ(::bind(here.tcp, plain(here.tcp_address), sizeof here.tcp_address), 0);
    ASSERT_EQ(::listen(here.tcp, 8), 0);
    socklen_t size = sizeof here.tcp_address;
    ASSERT_EQ(::getsockname(here.tcp, reinterpret_cast<sockaddr *>(&here.tcp_address), &size), 0);
}

void listen_on_unix(Surroundings &here)
{
    here.unix_socket = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    here.unix_address.sun_family = AF_UNIX;
    std::strcpy(here.unix_address.sun_path, (here.directory / "socket").c_str());
    ASSERT_EQ(::bind(here.unix_socket, plain(here.unix_address), sizeof here.unix_address), 0);
    ASSERT_EQ(::listen(here.unix_socket, 8), 0);
}

class Sandbox : public ::testing::Test {
protected:
    void SetUp() override
    {
        std::string name = (fs::temp_directory_path() / "sandbox-XXXXXX").string();
        ASSERT_NE(::mkdtemp(name.data()), nullptr);
        here.directory = name;
        here.file = (here.directory / "file").string();
        std::ofstream(here.file) << "content";
        here.directory_descriptor = ::open(name.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        here.file_descriptor = ::open(here.file.c_str(), O_RDWR | O_CLOEXEC);
        listen_on_tcp(here);
        listen_on_unix(here);
    }
    void TearDown() override
    {
        for (const int descriptor :
             {here.directory_descriptor, here.file_descriptor, here.tcp, here.unix_socket}) {
            ::close(descriptor);
        }
        fs::remove_all(here.directory);
    }

    Surroundings here;
};

// ---------------------------------------------------------------------- attempts -----

struct Attempt {
    const char *name;
    long (*call)(const Surroundings &); // below 0, with errno, where it failed
};

void PrintTo(const Attempt &attempt, std::ostream *out)
{
    *out << attempt.name;
}

// "done", or the error.
std::string outcome(const Attempt &attempt, const Surroundings &here)
{
    errno = 0;
    return attempt.call(here) >= 0 ? "done" : ::strerrorname_np(errno);
}

template <typename Address> long connect_to(int family, const Address &address)
{
    const int descriptor = ::socket(family, SOCK_STREAM, 0);
    return descriptor < 0 ? -1 : ::connect(descriptor, plain(address), sizeof address);
}

long fork_by(long (*call)())
{
    const long process = call();
    if (process == 0) {
        ::_exit(0);
    }
    return process;
}

const Attempt refused[] = {
    {"open_to_read",
     [](const Surroundings &here) -> long { return ::open(here.file.c_str(), O_RDONLY); }},
    {"open_to_write",
     [](const Surroundings &here) -> long { return ::open(here.file.c_str(), O_WRONLY); }},
    {"open_in_an_open_folder",
     [](const Surroundings &here) -> long {
         return ::openat(here.directory_descriptor, "file", O_RDONLY);
     }},
    {"open_by_openat2",
     [](const Surroundings &here) -> long {
         const uint64_t how[3] = {O_RDONLY, 0, 0};
         return ::syscall(SYS_openat2, here.directory_descriptor, "file", how, sizeof how);
     }},
    {"open_again_through_proc",
     [](const Surroundings &here) -> long {
         const std::string name = "/proc/self/fd/" + std::to_string(here.file_descriptor);
         return ::open(name.c_str(), O_RDWR);
     }},
    {"open_own_memory",
     [](const Surroundings &) -> long { return ::open("/proc/self/mem", O_RDWR); }},
    {"create",
     [](const Surroundings &here) -> long {
         return ::open((here.directory / "new").c_str(), O_WRONLY | O_CREAT, 0600);
     }},
    {"make_a_folder",
     [](const Surroundings &here) -> long {
         return ::mkdirat(here.directory_descriptor, "folder", 0700);
     }},
    {"unlink", [](const Surroundings &here) -> long { return ::unlink(here.file.c_str()); }},
    {"unlink_in_an_open_folder",
     [](const Surroundings &here) -> long {
         return ::unlinkat(here.directory_descriptor, "file", 0);
     }},
    {"rename",
     [](const Surroundings &here) -> long {
         return ::renameat(here.directory_descriptor, "file", here.directory_descriptor, "other");
     }},
    {"link",
     [](const Surroundings &here) -> long {
         return ::symlinkat("/", here.directory_descriptor, "root");
     }},
    {"change_permissions",
     [](const Surroundings &here) -> long { return ::fchmod(here.file_descriptor, 0777); }},
    {"stat",
     [](const Surroundings &here) -> long {
         struct stat status {};
         return ::stat(here.file.c_str(), &status);
     }},
    {"access", [](const Surroundings &here) -> long { return ::access(here.file.c_str(), R_OK); }},
    {"read_a_link",
     [](const Surroundings &) -> long {
         char name[64];
         return ::readlink("/proc/self/exe", name, sizeof name);
     }},
    {"list_an_open_folder",
     [](const Surroundings &here) -> long {
         alignas(8) char entries[1024];
         return ::syscall(SYS_getdents64, here.directory_descriptor, entries, sizeof entries);
     }},
    {"connect_by_tcp",
     [](const Surroundings &here) -> long { return connect_to(AF_INET, here.tcp_address); }},
    {"connect_to_a_unix_socket",
     [](const Surroundings &here) -> long { return connect_to(AF_UNIX, here.unix_address); }},
    {"make_a_pair_of_sockets",
     [](const Surroundings &) -> long {
         int ends[2];
         return ::socketpair(AF_UNIX, SOCK_STREAM, 0, ends);
     }},
    {"accept",
     [](const Surroundings &here) -> long {
         // With nobody there to accept, so that it answers without the sandbox too.
         return ::accept4(here.tcp, nullptr, nullptr, SOCK_NONBLOCK) >= 0 || errno == EAGAIN ? 0
                                                                                             : -1;
     }},
    {"listen", [](const Surroundings &here) -> long { return ::listen(here.tcp, 4); }},
    {"fork",
     [](const Surroundings &) -> long { return fork_by([]() -> long { return ::fork(); }); }},
    {"fork_by_clone",
     [](const Surroundings &) -> long {
         return fork_by([]() -> long { return ::syscall(SYS_clone, SIGCHLD, 0, 0, 0, 0); });
     }},
    {"fork_by_clone3",
     [](const Surroundings &) -> long {
         return fork_by([]() -> long {
             uint64_t arguments[11] = {};
             arguments[4] = SIGCHLD;
             return ::syscall(SYS_clone3, arguments, sizeof arguments);
         });
     }},
    {"change_the_flags_of_all_who_have_a_descriptor",
     [](const Surroundings &here) -> long {
         return ::fcntl(here.file_descriptor, F_SETFL, O_NONBLOCK);
     }},
    {"ask_a_terminal",
     [](const Surroundings &here) -> long {
         int waiting = 0;
         return ::ioctl(here.file_descriptor, FIONREAD, &waiting);
     }},
    {"name_the_process",
     [](const Surroundings &) -> long { return ::prctl(PR_SET_NAME, "other", 0, 0, 0); }},
};

// Each of these ends the process.
const Attempt deadly[] = {
    {"ask_after_the_parent_by_a_signal",
     [](const Surroundings &here) -> long { return ::kill(here.parent, 0); }},
    {"ask_after_the_parent_by_tgkill",
     [](const Surroundings &here) -> long {
         return ::syscall(SYS_tgkill, here.parent, here.parent, 0);
     }},
    {"be_traced",
     [](const Surroundings &) -> long { return ::ptrace(PTRACE_TRACEME, 0, nullptr, nullptr); }},
    {"map_executable_memory",
     [](const Surroundings &) -> long {
         return ::mmap(nullptr, 4096, PROT_READ | PROT_EXEC, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0) !=
                        MAP_FAILED
                    ? 0
                    : -1;
     }},
    {"make_memory_executable",
     [](const Surroundings &) -> long {
         void *memory =
             ::mmap(nullptr, 4096, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
         return ::mprotect(memory, 4096, PROT_READ | PROT_EXEC);
     }},
    {"read_memory_of_another",
     [](const Surroundings &here) -> long {
         return ::syscall(SYS_process_vm_readv, here.parent, nullptr, 0UL, nullptr, 0UL, 0UL);
     }},
    {"lift_a_limit",
     [](const Surroundings &) -> long {
         rlimit limit{};
         return ::getrlimit(RLIMIT_NOFILE, &limit) == 0 ? ::setrlimit(RLIMIT_NOFILE, &limit) : -1;
     }},
    {"learn_its_parent", [](const Surroundings &) -> long { return ::getppid(); }},
    {"wait_for_a_time",
     [](const Surroundings &) -> long {
         const timespec moment{0, 1};
         return ::nanosleep(&moment, nullptr);
     }},
    {"take_another_filter",
     [](const Surroundings &) -> long {
         const uint32_t action = SECCOMP_RET_ALLOW;
         return ::syscall(SYS_seccomp, SECCOMP_GET_ACTION_AVAIL, 0, &action);
     }},
    {"leave_a_namespace", [](const Surroundings &) -> long { return ::unshare(0); }},
    {"have_its_signals_sent_elsewhere",
     [](const Surroundings &here) -> long { return ::fcntl(here.tcp, F_SETOWN, here.parent); }},
    {"change_its_user", [](const Surroundings &) -> long { return ::setuid(::getuid()); }},
};

std::string name_of(const ::testing::TestParamInfo<Attempt> &info)
{
    return info.param.name;
}

class Refused : public Sandbox, public ::testing::WithParamInterface<Attempt> {};

TEST_P(Refused, FailsWithEpermAndTheProcessGoesOn)
{
    const auto work = [&] { return outcome(GetParam(), here); };
    const Ending inside = in_sandbox(Mode::required, work);
    EXPECT_EQ(inside.said, "EPERM");
    EXPECT_EQ(inside.exit_status, 0);
    const Ending outside = in_sandbox(Mode::off, work);
    EXPECT_EQ(outside.said, "done");
}

INSTANTIATE_TEST_SUITE_P(Sandbox, Refused, ::testing::ValuesIn(refused), name_of);

class Deadly : public Sandbox, public ::testing::WithParamInterface<Attempt> {};

TEST_P(Deadly, EndsTheProcessWithSigsys)
{
    const auto work = [&] { return outcome(GetParam(), here); };
    const Ending inside = in_sandbox(Mode::required, work);
    EXPECT_EQ(inside.said, "");
    EXPECT_EQ(inside.signal, SIGSYS);
    const Ending outside = in_sandbox(Mode::off, work);
    EXPECT_EQ(outside.said, "done");
}

INSTANTIATE_TEST_SUITE_P(Sandbox, Deadly, ::testing::ValuesIn(deadly), name_of);

// What has no answer when it succeeds.
TEST_F(Sandbox, StartsNoProgram)
{
    const auto work = [] {
        char name[] = "/bin/sh";
        char option[] = "-c";
        char script[] = "exit 7";
        char *arguments[] = {name, option, script, nullptr};
        ::execv(name, arguments);
        return std::string(::strerrorname_np(errno));
    };
    EXPECT_EQ(in_sandbox(Mode::required, work).said, "EPERM");
    EXPECT_EQ(in_sandbox(Mode::off, work).exit_status, 7);
}

TEST_F(Sandbox, SendsNothingToAnAddress)
{
    const int sender = ::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    const auto work = [&] {
        const ssize_t sent =
            ::sendto(sender, "x", 1, 0, plain(here.tcp_address), sizeof here.tcp_address);
        return std::string(sent == 1 ? "done" : ::strerrorname_np(errno));
    };
    EXPECT_EQ(in_sandbox(Mode::required, work).said, "EPERM");
    EXPECT_EQ(in_sandbox(Mode::off, work).said, "done");
    ::close(sender);
}

// ------------------------------------------------- kernels that lack one or the other -----

std::string report_words(pfsdoc::sandbox::Mode mode)
{
    const auto report = pfsdoc::sandbox::enter(mode);
    return report.ok() ? report.value().words()
                       : report.error().what + "; " + report.error().remedy + "; exit code " +
                             std::to_string(pfsdoc::exit_code(report.error().kind));
}

std::string words_of(pfsdoc::sandbox::Mode mode, Kernel kernel)
{
    return in_sandbox(
               Mode::off, [&] { return report_words(mode); }, kernel)
        .said;
}

bool is_landlock(const std::string &words)
{
    return words.starts_with("Landlock ") &&
           words.find_first_not_of("0123456789", 9) == std::string::npos;
}

constexpr const char *no_landlock =
    "the sandbox is not available: the kernel has no Landlock (Function not implemented); use a "
    "kernel that has it, or read without it with --sandbox=off; exit code 70";
constexpr const char *no_seccomp =
    "the sandbox is not available: the kernel takes no filter for seccomp; use a "
    "kernel that has it, or read without it with --sandbox=off; exit code 70";

TEST_F(Sandbox, TellsWhatIsInForce)
{
    const std::string words = words_of(Mode::required, Kernel::whole);
    EXPECT_TRUE(words.starts_with("seccomp, ") && is_landlock(words.substr(9))) << words;
    EXPECT_EQ(words_of(Mode::available, Kernel::whole), words);
    EXPECT_EQ(words_of(Mode::off, Kernel::whole), "none");
}

TEST_F(Sandbox, GoesOnWithWhatTheKernelHas)
{
    EXPECT_EQ(words_of(Mode::available, Kernel::without_landlock), "seccomp");
    const std::string words = words_of(Mode::available, Kernel::without_seccomp);
    EXPECT_TRUE(is_landlock(words)) << words;
    EXPECT_EQ(words_of(Mode::available, Kernel::without_both), "none");
}

TEST_F(Sandbox, FailsWhereItIsRequiredAndMissing)
{
    EXPECT_EQ(words_of(Mode::required, Kernel::without_landlock), no_landlock);
    EXPECT_EQ(words_of(Mode::required, Kernel::without_seccomp), no_seccomp);
    EXPECT_EQ(words_of(Mode::required, Kernel::without_both), no_landlock);
}

TEST_F(Sandbox, OfSeccompAloneRefusesFiles)
{
    const auto work = [&] { return outcome(refused[0], here); };
    EXPECT_EQ(in_sandbox(Mode::available, work, Kernel::without_landlock).said, "EPERM");
}

// Landlock answers for itself here, so what it refuses is refused twice in a whole kernel.
TEST_F(Sandbox, OfLandlockAloneRefusesFiles)
{
    const auto said = [&](long (*call)(const Surroundings &)) {
        const Attempt attempt{"", call};
        return in_sandbox(
                   Mode::available, [&] { return outcome(attempt, here); }, Kernel::without_seccomp)
            .said;
    };
    EXPECT_EQ(said([](const Surroundings &surroundings) -> long {
                  return ::open(surroundings.file.c_str(), O_RDONLY);
              }),
              "EACCES");
    EXPECT_EQ(said([](const Surroundings &surroundings) -> long {
                  return ::openat(surroundings.directory_descriptor, "new", O_WRONLY | O_CREAT,
                                  0600);
              }),
              "EACCES");
    EXPECT_EQ(said([](const Surroundings &surroundings) -> long {
                  return ::unlink(surroundings.file.c_str());
              }),
              "EACCES");
    EXPECT_EQ(said([](const Surroundings &) -> long {
                  char name[] = "/bin/sh";
                  char *arguments[] = {name, nullptr};
                  return ::execv(name, arguments);
              }),
              "EACCES");
}

// Connections by TCP came with version 4, signals and abstract sockets with version 6.
TEST_F(Sandbox, OfLandlockAloneRefusesWhatItsVersionKnows)
{
    const int version = std::stoi(words_of(Mode::available, Kernel::without_seccomp).substr(9));
    const auto said = [&](const std::function<long()> &call) {
        const auto work = [&] {
            return std::string(call() >= 0 ? "done" : ::strerrorname_np(errno));
        };
        return in_sandbox(Mode::available, work, Kernel::without_seccomp).said;
    };
    EXPECT_EQ(said([&] { return connect_to(AF_INET, here.tcp_address); }),
              version >= 4 ? "EACCES" : "done");
    EXPECT_EQ(said([&]() -> long { return ::kill(here.parent, 0); }),
              version >= 6 ? "EPERM" : "done");

    sockaddr_un abstract{};
    abstract.sun_family = AF_UNIX;
    std::memcpy(abstract.sun_path, abstract_name, sizeof abstract_name);
    const int listening = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    ASSERT_EQ(::bind(listening, plain(abstract), sizeof abstract), 0);
    ASSERT_EQ(::listen(listening, 1), 0);
    EXPECT_EQ(said([&] { return connect_to(AF_UNIX, abstract); }), version >= 6 ? "EPERM" : "done");
    ::close(listening);
}

} // namespace
