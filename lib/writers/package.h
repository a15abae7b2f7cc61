// A zip archive, written straight to an output: the package that OpenDocument and other word
// processors' formats are.
//
// An output cannot go back, so the sizes and the checksum of a compressed entry, which are
// known when it ends, follow it in a data descriptor; a stored entry, whose content is known
// beforehand, has them in front, so that "mimetype" can be read at a fixed offset. Fields that
// 32 bits may be too small for have 64, and only those: an entry's are chosen by the most bytes
// that are announced for it. The same content gives the same bytes: all entries bear the first
// date that the format can express.
// Test: tests/lib/writers/package_test.cpp.
#pragma once

#include "pfsdoc/output.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace pfsdoc::writers {

class Package final : public Output {
public:
    // The output must outlive the package. All calls throw what the output throws.
    explicit Package(Output &output);
    ~Package() override;
    Package(const Package &) = delete;
    Package &operator=(const Package &) = delete;

    // Whole entries: as it is, and compressed. Names are ASCII.
    void store(std::string_view name, std::string_view bytes);
    void add(std::string_view name, std::string_view bytes);
    // An entry that comes in parts, of so many bytes at most; it ends where the next begins.
    void begin(std::string_view name, uint64_t most_bytes);
    void write(std::string_view bytes) override;
    // Completes the archive; nothing may follow.
    void finish();

    // What the directory at the end says of one.
    struct Entry {
        std::string name;
        bool is_compressed = false;
        bool has_long_sizes = false;
        uint64_t offset = 0;
        uint32_t checksum = 0;
        uint64_t compressed_size = 0;
        uint64_t size = 0;
    };

private:
    class Deflater;

    void end_entry();
    void write_local_header(const Entry &entry);
    void write_descriptor(const Entry &entry);
    void send(std::string_view bytes);

    Output &output_;
    uint64_t offset_ = 0; // of what is sent next
    std::vector<Entry> entries_;
    bool entry_is_open_ = false;
    uint64_t content_offset_ = 0; // of the last entry's
    std::unique_ptr<Deflater> deflater_;
};

} // namespace pfsdoc::writers
