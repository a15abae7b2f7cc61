/* Preloaded into a batch: makes one of its system calls fail, or stops or ends the program there.
 *
 * Calls are counted in the batch's own process only: its workers have a sandbox to live in, and
 * what they do is not what is tried here. The counter lies in a page that a fork wipes, so no
 * process below the first one counts. The exception is syncfs, which is the whole work of a
 * process of its own.
 *
 *   FAILING_CALL    the number of the call, from 1; 0 for none
 *   FAILING_SYNC    the same for calls of syncfs
 *   FAILING_ACTION  an error's number, or "kill" (instead of the call), "kill_after" or "stop"
 *                   (before it, until SIGCONT)
 *   CALLS_LOG       a file that the name of each call is appended to
 */
#define _GNU_SOURCE
#include <dirent.h>
#include <dlfcn.h>
#include <errno.h>
#include <fcntl.h>
#include <signal.h>
#include <stdarg.h>
#include <stdlib.h>
#include <string.h>
#include <sys/file.h>
#include <sys/mman.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <unistd.h>

enum { page = 4096 };

struct state {
    int active; /* 0 below the first process */
    long calls;
};

static struct state *state;
static long failing_call;
static long failing_sync;
static const char *action = "";
static int log_descriptor = -1;

static long number_of(const char *variable)
{
    const char *value = getenv(variable);
    return value != NULL ? strtol(value, NULL, 10) : 0;
}

/* Its own name is that of the program it was started by. */
static int is_batch(void)
{
    char path[page];
    const ssize_t length = readlink("/proc/self/exe", path, sizeof path - 1);
    path[length > 0 ? length : 0] = '\0';
    const char *slash = strrchr(path, '/');
    return slash != NULL && strcmp(slash + 1, "pfsdoc-batch") == 0;
}

__attribute__((constructor)) static void prepare(void)
{
    if (!is_batch()) {
        return;
    }
    failing_call = number_of("FAILING_CALL");
    failing_sync = number_of("FAILING_SYNC");
    if (getenv("FAILING_ACTION") != NULL) {
        action = getenv("FAILING_ACTION");
    }
    void *memory = mmap(NULL, page, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED || madvise(memory, page, MADV_WIPEONFORK) != 0) {
        abort();
    }
    if (getenv("CALLS_LOG") != NULL) {
        const int flags = O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC;
        log_descriptor = (int)syscall(SYS_openat, AT_FDCWD, getenv("CALLS_LOG"), flags, 0666);
    }
    state = memory;
    state->active = 1;
}

/* Whether the call is to fail, with the error in errno. */
static int act(void)
{
    if (strcmp(action, "stop") == 0) {
        raise(SIGSTOP);
        return 0;
    }
    if (strcmp(action, "kill") == 0) {
        raise(SIGKILL);
    }
    errno = atoi(action);
    return errno != 0;
}

static int is_turn_of(const char *name)
{
    if (state == NULL || !state->active) {
        return 0;
    }
    if (log_descriptor >= 0) {
        syscall(SYS_write, log_descriptor, name, strlen(name));
        syscall(SYS_write, log_descriptor, "\n", (size_t)1);
    }
    return ++state->calls == failing_call;
}

#define DEFINE(type, name, parameters, arguments, failure)                                         \
    type name parameters                                                                           \
    {                                                                                              \
        static type(*real) parameters;                                                             \
        if (real == NULL) {                                                                        \
            real = (type(*) parameters)dlsym(RTLD_NEXT, #name);                                    \
        }                                                                                          \
        const int is_turn = is_turn_of(#name);                                                     \
        const int saved = errno;                                                                   \
        if (is_turn && strcmp(action, "kill_after") != 0 && act()) {                               \
            return failure;                                                                        \
        }                                                                                          \
        errno = saved;                                                                             \
        type returned = real arguments;                                                            \
        if (is_turn && strcmp(action, "kill_after") == 0) {                                        \
            raise(SIGKILL);                                                                        \
        }                                                                                          \
        return returned;                                                                           \
    }

static int (*real_open)(int, const char *, int, mode_t);

/* All four ways to open a file are one system call. */
static int open_file(const char *name, int folder, const char *path, int flags, mode_t mode)
{
    const int is_turn = is_turn_of(name);
    if (is_turn && strcmp(action, "kill_after") != 0 && act()) {
        return -1;
    }
    if (real_open == NULL) {
        real_open = (int (*)(int, const char *, int, mode_t))dlsym(RTLD_NEXT, "openat");
    }
    const int result = real_open(folder, path, flags, mode);
    if (is_turn && strcmp(action, "kill_after") == 0) {
        raise(SIGKILL);
    }
    return result;
}

static mode_t mode_of(int flags, va_list arguments)
{
    const int has_mode = (flags & O_CREAT) != 0 || (flags & O_TMPFILE) == O_TMPFILE;
    return has_mode ? va_arg(arguments, mode_t) : 0;
}

#define DEFINE_OPEN(name)                                                                          \
    int name(const char *path, int flags, ...)                                                     \
    {                                                                                              \
        va_list arguments;                                                                         \
        va_start(arguments, flags);                                                                \
        const mode_t mode = mode_of(flags, arguments);                                             \
        va_end(arguments);                                                                         \
        return open_file("open", AT_FDCWD, path, flags, mode);                                     \
    }
#define DEFINE_OPENAT(name)                                                                        \
    int name(int folder, const char *path, int flags, ...)                                         \
    {                                                                                              \
        va_list arguments;                                                                         \
        va_start(arguments, flags);                                                                \
        const mode_t mode = mode_of(flags, arguments);                                             \
        va_end(arguments);                                                                         \
        return open_file("openat", folder, path, flags, mode);                                     \
    }

DEFINE_OPEN(open)
DEFINE_OPEN(open64)
DEFINE_OPENAT(openat)
DEFINE_OPENAT(openat64)
DEFINE(ssize_t, read, (int file, void *to, size_t size), (file, to, size), -1)
DEFINE(ssize_t, pread, (int file, void *to, size_t size, off_t at), (file, to, size, at), -1)
DEFINE(ssize_t, pread64, (int file, void *to, size_t size, off_t at), (file, to, size, at), -1)
DEFINE(ssize_t, write, (int file, const void *from, size_t size), (file, from, size), -1)
DEFINE(ssize_t, pwrite, (int file, const void *from, size_t size, off_t at), (file, from, size, at),
       -1)
DEFINE(ssize_t, writev, (int file, const struct iovec *parts, int count), (file, parts, count), -1)
DEFINE(int, fsync, (int file), (file), -1)
DEFINE(int, fdatasync, (int file), (file), -1)
DEFINE(int, ftruncate, (int file, off_t size), (file, size), -1)
DEFINE(int, ftruncate64, (int file, off_t size), (file, size), -1)
DEFINE(int, flock, (int file, int operation), (file, operation), -1)
DEFINE(int, fchmod, (int file, mode_t mode), (file, mode), -1)
DEFINE(int, fstat, (int file, struct stat *status), (file, status), -1)
DEFINE(int, fstatat, (int folder, const char *path, struct stat *status, int flags),
       (folder, path, status, flags), -1)
DEFINE(int, mkdir, (const char *path, mode_t mode), (path, mode), -1)
DEFINE(int, mkdirat, (int folder, const char *path, mode_t mode), (folder, path, mode), -1)
DEFINE(int, unlink, (const char *path), (path), -1)
DEFINE(int, unlinkat, (int folder, const char *path, int flags), (folder, path, flags), -1)
DEFINE(int, rename, (const char *from, const char *to), (from, to), -1)
DEFINE(int, renameat, (int from_folder, const char *from, int to_folder, const char *to),
       (from_folder, from, to_folder, to), -1)
DEFINE(int, renameat2,
       (int from_folder, const char *from, int to_folder, const char *to, unsigned flags),
       (from_folder, from, to_folder, to, flags), -1)
DEFINE(int, link, (const char *from, const char *to), (from, to), -1)
DEFINE(int, linkat, (int from_folder, const char *from, int to_folder, const char *to, int flags),
       (from_folder, from, to_folder, to, flags), -1)
DEFINE(int, socketpair, (int domain, int type, int protocol, int ends[2]),
       (domain, type, protocol, ends), -1)
DEFINE(int, pipe2, (int ends[2], int flags), (ends, flags), -1)
DEFINE(int, memfd_create, (const char *name, unsigned flags), (name, flags), -1)
DEFINE(pid_t, fork, (void), (), -1)
DEFINE(DIR *, fdopendir, (int folder), (folder), NULL)
DEFINE(struct dirent *, readdir, (DIR * folder), (folder), NULL)

int syncfs(int file)
{
    static int (*real)(int);
    static long calls;
    if (real == NULL) {
        real = (int (*)(int))dlsym(RTLD_NEXT, "syncfs");
    }
    return ++calls == failing_sync && act() ? -1 : real(file);
}
