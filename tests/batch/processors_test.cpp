// Threads and processes that are kept to one processor.
#include "batch/processes/processors.h"

#include <gtest/gtest.h>

#include <csignal>
#include <sched.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace {

using pfsdoc::batch::bind_beside;
using pfsdoc::batch::bind_to_processor;
using pfsdoc::batch::count_processors;

// Where a process, or with 0 the calling thread, may run.
std::vector<int> processors_of(pid_t process)
{
    cpu_set_t set;
    EXPECT_EQ(::sched_getaffinity(process, sizeof set, &set), 0);
    std::vector<int> processors;
    for (int processor = 0; processor < CPU_SETSIZE; ++processor) {
        if (CPU_ISSET(processor, &set)) {
            processors.push_back(processor);
        }
    }
    return processors;
}

TEST(Processors, AreThoseOfTheThread)
{
    EXPECT_EQ(count_processors(), processors_of(0).size());
    std::jthread([] {
        bind_to_processor(0);
        EXPECT_EQ(count_processors(), 1U);
    });
}

TEST(Processors, AreBoundToOneByOne)
{
    const std::vector<int> all = processors_of(0);
    for (std::size_t index = 0; index < all.size(); ++index) {
        std::jthread([&] {
            bind_to_processor(index);
            EXPECT_EQ(processors_of(0), std::vector{all[index]});
        });
    }
    EXPECT_EQ(processors_of(0), all) << "other threads are where they were";
}

TEST(Processors, ThatAreNotThereAreNotBoundTo)
{
    const std::vector<int> all = processors_of(0);
    bind_to_processor(all.size());
    EXPECT_EQ(processors_of(0), all);
}

TEST(Processors, AreSharedWithAProcess)
{
    const pid_t child = ::fork();
    if (child == 0) {
        ::pause();
        ::_exit(0);
    }
    const std::vector<int> all = processors_of(0);
    std::jthread([&] {
        bind_to_processor(all.size() - 1);
        bind_beside(child);
    });
    EXPECT_EQ(processors_of(child), std::vector{all.back()});
    ::kill(child, SIGKILL);
    EXPECT_EQ(::waitpid(child, nullptr, 0), child);
    bind_beside(child); // it is gone
}

} // namespace
