// A zip archive unpacked by the tests' own reader, which uses the directory at the end, as most
// readers do: for the tests of packages. Any inconsistency is a fault.
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>
#include <zlib.h>

namespace tests {

struct Entry {
    std::string name;
    std::string content;
    bool operator==(const Entry &) const = default;
};

class PackageReader {
public:
    explicit PackageReader(std::string_view bytes) : bytes_(bytes) {}

    // Throws std::runtime_error if the archive is damaged.
    std::vector<Entry> entries() const
    {
        require(bytes_.size() >= end_size, "no directory");
        const std::size_t end = bytes_.size() - end_size;
        require(number(end, 4) == 0x06054B50, "no end of the directory");
        const uint64_t count = number(end + 10, 2);
        uint64_t at = number(end + 16, 4);
        require(at + number(end + 12, 4) == end, "the directory's size");
        std::vector<Entry> entries;
        for (uint64_t i = 0; i < count; ++i) {
            require(number(at, 4) == 0x02014B50, "an entry of the directory");
            entries.push_back(entry(at));
            at += 46 + number(at + 28, 2) + number(at + 30, 2) + number(at + 32, 2);
        }
        require(at == end, "the directory's end");
        return entries;
    }

private:
    static constexpr std::size_t end_size = 22;

    static void require(bool holds, const std::string &what)
    {
        if (!holds) {
            throw std::runtime_error("damaged: " + what);
        }
    }
    uint64_t number(uint64_t at, std::size_t size) const
    {
        uint64_t value = 0;
        for (std::size_t i = size; i > 0; --i) {
            value = value << 8U | static_cast<uint8_t>(bytes_.at(at + i - 1));
        }
        return value;
    }

    Entry entry(uint64_t at) const
    {
        const uint64_t header = number(at + 42, 4);
        const std::string name(bytes_.substr(at + 46, number(at + 28, 2)));
        require(number(header, 4) == 0x04034B50, "an entry's header");
        require(bytes_.substr(header + 30, name.size()) == name, "an entry's name");
        require(number(header + 8, 2) == number(at + 10, 2), "an entry's method");
        const uint64_t content = header + 30 + number(header + 26, 2) + number(header + 28, 2);
        const std::string_view stored = bytes_.substr(content, number(at + 20, 4));
        const uint64_t size = number(at + 24, 4);
        const std::string bytes =
            number(at + 10, 2) == 0 ? std::string(stored) : inflated(stored, size);
        require(bytes.size() == size, "an entry's size");
        require(number(at + 16, 4) ==
                    ::crc32_z(0, reinterpret_cast<const Bytef *>(bytes.data()), bytes.size()),
                "an entry's checksum");
        return {name, bytes};
    }

    static std::string inflated(std::string_view deflated, uint64_t size)
    {
        std::string bytes(size + 1, '\0'); // zlib wants room for a byte
        z_stream stream{};
        require(::inflateInit2(&stream, -15) == Z_OK, "zlib");
        stream.next_in = reinterpret_cast<Bytef *>(const_cast<char *>(deflated.data()));
        stream.avail_in = static_cast<uInt>(deflated.size());
        stream.next_out = reinterpret_cast<Bytef *>(bytes.data());
        stream.avail_out = static_cast<uInt>(bytes.size());
        const bool is_whole = ::inflate(&stream, Z_FINISH) == Z_STREAM_END && stream.avail_in == 0;
        bytes.resize(stream.total_out);
        ::inflateEnd(&stream);
        require(is_whole, "compressed bytes");
        return bytes;
    }

    std::string_view bytes_;
};

inline std::vector<Entry> unpacked(std::string_view package)
{
    return PackageReader(package).entries();
}

// Empty where there is none.
inline std::string entry_of(std::string_view package, std::string_view name)
{
    for (const Entry &entry : unpacked(package)) {
        if (entry.name == name) {
            return entry.content;
        }
    }
    return {};
}

} // namespace tests
