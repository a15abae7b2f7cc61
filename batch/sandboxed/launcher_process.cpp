// What many processes have in common is made once, here: most of the sandbox, and the size of the
// program in memory.
//
// A process that is cloned becomes a child of this one's parent, which ends it when its time is
// over, and with which it ends. Nobody but the parent sends anything here.
#include "batch/sandboxed/launcher_process.h"

#include "batch/sandboxed/archive_reader.h"
#include "batch/sandboxed/limits.h"
#include "batch/sandboxed/worker.h"
#include "batch/wire/launch.h"
#include "batch/wire/records.h"
#include "lib/base/descriptor.h"

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <optional>
#include <sched.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/types.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace pfsdoc::batch {

namespace {

// When the system has no room for another process, it may have soon: others end all the time.
constexpr int most_attempts = 200;
constexpr std::chrono::milliseconds between_attempts{20};

struct Launching {
    const LauncherSettings &settings;
    const sandbox::Sandbox &walls;
    uint64_t address_space;
    pid_t parent;
    int socket;
};

// The C library cannot do this: its fork makes children of this process. One thread is all
// that there is, so nothing but the number of the process differs, which the library does not keep.
pid_t clone_as_sibling()
{
    return static_cast<pid_t>(::syscall(SYS_clone, CLONE_PARENT | SIGCHLD, 0, 0, 0, 0));
}

// An exception must not unwind what belongs to the launcher: noexcept ends the process.
[[noreturn]] void play(const Launching &launching, LaunchKind kind,
                       const std::vector<int> &descriptors) noexcept
{
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (::getppid() != launching.parent) {
        ::_exit(EXIT_FAILURE);
    }
    ::close(launching.socket);
    const ReaderStart start{launching.walls, launching.address_space};
    if (kind == LaunchKind::archive_reader && descriptors.size() == 2) {
        run_archive_reader(descriptors[0], descriptors[1], launching.settings.archive, start);
    }
    if (kind == LaunchKind::worker && descriptors.size() == 1) {
        run_worker(descriptors[0], launching.settings.worker, start);
    }
    ::_exit(EXIT_FAILURE);
}

LaunchReply launch(const Launching &launching, LaunchKind kind, const std::vector<int> &descriptors)
{
    for (int attempt = 1;; ++attempt) {
        const pid_t process = clone_as_sibling();
        if (process == 0) {
            play(launching, kind, descriptors);
        }
        if (process > 0) {
            return {static_cast<int32_t>(process), 0};
        }
        const int error_number = errno;
        if (attempt == most_attempts || (error_number != EAGAIN && error_number != ENOMEM)) {
            return {0, error_number};
        }
        std::this_thread::sleep_for(between_attempts);
    }
}

} // namespace

void run_launcher(int socket, const LauncherSettings &settings)
{
    ::prctl(PR_SET_NAME, "pfsdoc-launcher");
    const pid_t parent = ::getppid();
    const uint64_t own = address_space();
    const sandbox::Sandbox walls = sandbox::Sandbox::build(settings.worker.sandbox);
    const Launching launching{settings, walls, own, parent, socket};
    std::vector<int> descriptors;
    while (const auto request = receive_record<LaunchRequest>(socket, &descriptors)) {
        const LaunchReply reply = launch(launching, request->kind, descriptors);
        for (const int descriptor : descriptors) {
            ::close(descriptor);
        }
        if (!send_record(socket, reply)) {
            break;
        }
    }
    ::_exit(EXIT_SUCCESS);
}

} // namespace pfsdoc::batch
