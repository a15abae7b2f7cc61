/* Runs a command a number of times, discards its output, and prints the cost:
 *
 *   measure_command TIMES COMMAND [ARGUMENT...]
 *
 * prints nanoseconds of processor time, nanoseconds on the clock, and the peak resident
 * memory of any run, in kilobytes. Fails if a run fails.
 *
 * A separate program, in C and small, because a child's peak includes what its parent had
 * resident when the child was started. */
#include <fcntl.h>
#include <spawn.h>
#include <stdio.h>
#include <stdlib.h>
#include <sys/personality.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <time.h>

extern char **environ;

static const long long nanoseconds = 1000000000LL;

static long long now(void)
{
    struct timespec time;
    clock_gettime(CLOCK_MONOTONIC, &time);
    return time.tv_sec * nanoseconds + time.tv_nsec;
}

static long long of_timeval(struct timeval time)
{
    return time.tv_sec * nanoseconds + time.tv_usec * 1000LL;
}

/* The process, or -1. */
static pid_t start(char **command)
{
    pid_t child = -1;
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_addopen(&actions, 2, "/dev/null", O_WRONLY, 0);
    if (posix_spawnp(&child, command[0], &actions, NULL, command, environ) != 0) {
        child = -1;
    }
    posix_spawn_file_actions_destroy(&actions);
    return child;
}

int main(int argc, char **argv)
{
    const int times = argc > 2 ? atoi(argv[1]) : 0;
    long long processor = 0;
    long long clock = 0;
    long most_resident = 0;
    if (times <= 0) {
        fputs("usage: measure_command TIMES COMMAND [ARGUMENT...]\n", stderr);
        return 2;
    }
    /* With address randomisation the peak varies by some pages between runs. */
    personality(ADDR_NO_RANDOMIZE);
    for (int i = 0; i < times; ++i) {
        struct rusage usage;
        int status = 0;
        const long long begin = now();
        const pid_t child = start(argv + 2);
        if (child < 0 || wait4(child, &status, 0, &usage) != child || status != 0) {
            fprintf(stderr, "measure_command: %s fails\n", argv[2]);
            return 1;
        }
        clock += now() - begin;
        processor += of_timeval(usage.ru_utime) + of_timeval(usage.ru_stime);
        most_resident = usage.ru_maxrss > most_resident ? usage.ru_maxrss : most_resident;
    }
    printf("%lld %lld %ld\n", processor / times, clock / times, most_resident);
    return 0;
}
