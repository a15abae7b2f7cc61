// What is measured: the module and the floor, loaded at run time, and the host that they call.
#pragma once

#include "bench/floor.h"
#include "bench/reading.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace bench {

// Both libraries are in the program's directory.
class Subject {
public:
    // Exits if a library is missing or the floor's stream is not the module's.
    Subject();

    const pfsdoc::Module &module() const
    {
        return module_;
    }
    const pfsdoc::ModuleEntries &entries() const
    {
        return module_.entries();
    }
    void read_floor(VwCharStream *stream, const FloorTable &table) const
    {
        floor_(stream, &table);
    }

private:
    pfsdoc::Module module_;
    void (*floor_)(VwCharStream *, const FloorTable *);
};

// The program's directory, with a slash.
std::string program_directory();

// Appends what it is called with to a buffer that is large enough for the document.
class AppendingHost {
public:
    explicit AppendingHost(std::size_t document_size);
    AppendingHost(const AppendingHost &) = delete;
    AppendingHost &operator=(const AppendingHost &) = delete;

    // Characters, special characters, attributes and breaks. Paragraphs do not stop it.
    void register_with(Reading &reading);
    static VwRoutine character_routine();

    void rewind()
    {
        next = buffer_.get();
    }
    std::size_t characters() const
    {
        return static_cast<std::size_t>(next - buffer_.get());
    }

    uint8_t *next;
    uint64_t attribute_changes = 0;
    bool stops_at_paragraphs = false;
    bool ended = false;

private:
    std::unique_ptr<uint8_t[]> buffer_;
};

// The cost of reading a document once, from the first read call to the end.
struct Measured {
    double seconds = 0;
    std::size_t characters = 0;
    uint64_t host_reads = 0;
    uint64_t allocations = 0;
};

Measured measure_floor(const Subject &subject, std::string_view document, AppendingHost &host);
Measured measure_module(const Subject &subject, std::string_view document, AppendingHost &host);
// With a host that registers nothing.
Measured measure_silent(const Subject &subject, std::string_view document);

} // namespace bench
