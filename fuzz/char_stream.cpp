// The character stream compared with a plain position in a string: a piece size, a file size, then
// one byte for each operation with its arguments.
#include "fuzz/fuzz_host.h"
#include "fuzz/fuzz_input.h"

#include <algorithm>
#include <random>
#include <utility>

namespace {

enum Operation : uint8_t { get, get_many, unget, seek_near, seek_absolute, seek_end, operations };

constexpr int most_operations = 64;
constexpr unsigned most_gets = 5000;
constexpr unsigned most_file_size = 8192;

// The stream's promises, implemented without a buffer.
class PlainStream {
public:
    explicit PlainStream(std::string bytes_) : bytes(std::move(bytes_)) {}

    int32_t get()
    {
        if (misses == 0 && position < bytes.size()) {
            return static_cast<uint8_t>(bytes[position++]);
        }
        misses = std::min(misses + 1, most_misses);
        return -1;
    }
    void unget()
    {
        --position;
    }
    uint32_t tell() const
    {
        return position + misses;
    }
    void seek(uint32_t to)
    {
        position = to;
        misses = 0;
    }
    uint32_t from_end(uint32_t offset) const
    {
        return static_cast<uint32_t>(bytes.size()) + offset;
    }

private:
    static constexpr uint32_t most_misses = 32768; // where the stream's counter saturates
    std::string bytes;
    uint32_t position = 0;
    uint32_t misses = 0;
};

// Bytes without repetition within a buffer's length.
std::string bytes_of_file(std::size_t size)
{
    std::minstd_rand random(1);
    std::string bytes(size, '\0');
    for (char &byte : bytes) {
        byte = static_cast<char>(random());
    }
    return bytes;
}

class Comparison {
public:
    Comparison(std::string bytes, uint32_t most_per_read) : host(bytes), plain(std::move(bytes))
    {
        host.file.most_per_read = most_per_read;
    }

    void run(fuzz::Input &input)
    {
        for (int n = 0; n < most_operations && !input.empty(); ++n) {
            step(input);
            fuzz::require(VwCharTell(host.stream) == plain.tell(), "not the position");
            check_buffer();
        }
    }

private:
    void step(fuzz::Input &input)
    {
        switch (input.byte() % operations) {
        case get: compare_get(); break;
        case get_many: compare_gets(input.word() % most_gets); break;
        case unget: compare_unget(); break;
        case seek_near: compare_seek(static_cast<uint32_t>(int32_t{input.byte()} - 128), 1); break;
        case seek_absolute: compare_seek(input.word(), 0); break;
        default: compare_seek(0U - input.word(), 2); break;
        }
    }

    void compare_get()
    {
        const int32_t byte = VwCharGet(host.stream);
        fuzz::require(byte == plain.get(), "not the byte");
        just_delivered = byte >= 0;
    }

    void compare_gets(unsigned count)
    {
        for (unsigned i = 0; i < count; ++i) {
            compare_get();
        }
    }

    void compare_unget()
    {
        if (just_delivered) {
            VwCharUnget(host.stream);
            plain.unget();
            just_delivered = false;
        }
    }

    void compare_seek(uint32_t offset, int32_t origin)
    {
        const uint32_t target = origin == 1   ? plain.tell() + offset
                                : origin == 2 ? plain.from_end(offset)
                                              : offset;
        fuzz::require(VwCharSeek(host.stream, offset, origin) == 0, "a seek that failed");
        plain.seek(target);
        just_delivered = false;
    }

    void check_buffer() const
    {
        const VwCharStream &stream = *host.stream;
        fuzz::require(stream.bufferLength <= VW_STREAM_BUFFER_SIZE, "more than the buffer holds");
        fuzz::require(stream.remaining <= static_cast<int32_t>(stream.bufferLength),
                      "more left than there was");
        fuzz::require(stream.cursor >= stream.buffer &&
                          stream.cursor <= stream.buffer + stream.bufferLength,
                      "a cursor outside the buffer");
    }

    fuzz::Host host;
    PlainStream plain;
    bool just_delivered = false;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, std::size_t size)
{
    fuzz::Input input(data, size);
    const uint32_t most_per_read = 1 + uint32_t{input.byte()} * 16;
    Comparison comparison(bytes_of_file(input.word() % most_file_size), most_per_read);
    comparison.run(input);
    return 0;
}
