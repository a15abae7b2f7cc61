#include "tests/support/memory_block_file.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace tests {

namespace {

constexpr int32_t success = 0;
constexpr int32_t failure = 5; // any value but 0 means failure
constexpr uint32_t origin_end = 2;

MemoryBlockFile &file_of(VwBlockFile *self)
{
    return *static_cast<MemoryBlockFile *>(self);
}

void note(MemoryBlockFile &file, const std::string &operation)
{
    if (file.keep_log) {
        file.log.push_back(operation);
    }
}

OpenRequest request_of(uint32_t code, const void *argument, uint32_t one)
{
    OpenRequest request{code, {}, nullptr, one};
    if (code == VW_OPEN_BESIDE) {
        const auto *beside = static_cast<const VwOpenBeside *>(argument);
        request.name = beside->name;
        request.existing = beside->existing;
    } else {
        request.name = static_cast<const char *>(argument);
    }
    return request;
}

} // namespace

extern "C" {

static int32_t memory_close(VwBlockFile *self)
{
    MemoryBlockFile &file = file_of(self);
    ++file.closes;
    note(file, "close");
    return file.close_result;
}

static int32_t memory_read(VwBlockFile *self, void *destination, uint32_t count,
                           uint32_t *count_read)
{
    MemoryBlockFile &file = file_of(self);
    ++file.reads;
    if (file.keep_log) {
        note(file, "read " + std::to_string(count));
    }
    if (file.fail_reads) {
        *count_read = 1; // a failing host may store anything
        return failure;
    }
    const uint64_t left = file.position < file.bytes.size() ? file.bytes.size() - file.position : 0;
    const auto given =
        static_cast<uint32_t>(std::min<uint64_t>(left, std::min(count, file.most_per_read)));
    if (given > 0) {
        std::memcpy(destination, file.bytes.data() + file.position, given);
    }
    file.position += given;
    *count_read = given + file.claimed_excess;
    return success;
}

static int32_t memory_seek(VwBlockFile *self, uint32_t origin, int32_t offset)
{
    MemoryBlockFile &file = file_of(self);
    ++file.seeks;
    if (file.keep_log) {
        note(file, "seek " + std::to_string(origin) + " " + std::to_string(offset));
    }
    if (file.fail_seeks) {
        return failure;
    }
    file.position = origin == origin_end
                        ? static_cast<uint64_t>(static_cast<int64_t>(file.bytes.size()) + offset)
                        : static_cast<uint32_t>(offset);
    return success;
}

static int32_t memory_tell(VwBlockFile *self, uint32_t *position)
{
    MemoryBlockFile &file = file_of(self);
    ++file.tells;
    note(file, "tell");
    if (file.fail_tells) {
        return failure;
    }
    *position = static_cast<uint32_t>(file.position);
    return success;
}

static int32_t memory_open(VwBlockFile **result, uint32_t code, const void *argument, uint32_t one)
{
    const OpenRequest request = request_of(code, argument, one);
    open_record().requests.push_back(request);
    VwBlockFile *opened = open_record().answer ? open_record().answer(request) : nullptr;
    if (opened == nullptr) {
        return failure;
    }
    *result = opened;
    return success;
}

} // extern "C"

MemoryBlockFile::MemoryBlockFile(std::string bytes_)
    : VwBlockFile{memory_close, memory_read, nullptr,    memory_seek,
                  memory_tell,  nullptr,     memory_open},
      bytes(std::move(bytes_))
{
}

std::string MemoryBlockFile::take_log()
{
    std::string line;
    for (const std::string &operation : std::exchange(log, {})) {
        line += line.empty() ? operation : ", " + operation;
    }
    return line;
}

OpenRecord &open_record()
{
    static OpenRecord record;
    return record;
}

} // namespace tests
