// Instances are independent: sixteen threads, each with instances of its own, read all samples
// concurrently and get what one thread gets. Under ThreadSanitizer this shows that the module
// shares no mutable state.
#include "tests/robustness/document_files.h"
#include "tests/support/recording_host.h"

#include <thread>

namespace tests {
namespace {

constexpr std::size_t thread_count = 16;

Calls read_document(const std::string &document)
{
    RecordingHost host(document);
    host.file.keep_log = false;
    return host.open() == 0 ? host.read_all() : Calls{};
}

std::vector<Calls> read_documents(const std::vector<std::string> &documents)
{
    std::vector<Calls> readings;
    for (const std::string &document : documents) {
        readings.push_back(read_document(document));
    }
    return readings;
}

TEST(Threads, ReadTheSameAsOne)
{
    std::vector<std::string> documents;
    for (const DocumentFile &file : sample_files()) {
        documents.push_back(file.bytes());
    }
    const std::vector<Calls> expected = read_documents(documents);
    std::vector<std::vector<Calls>> readings(thread_count);
    std::vector<std::thread> threads;
    for (std::vector<Calls> &reading : readings) {
        threads.emplace_back([&] { reading = read_documents(documents); });
    }
    for (std::thread &thread : threads) {
        thread.join();
    }
    for (const std::vector<Calls> &reading : readings) {
        EXPECT_TRUE(reading == expected);
    }
}

} // namespace
} // namespace tests
