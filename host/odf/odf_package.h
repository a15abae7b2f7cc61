// An OpenDocument package: a zip archive whose first entry, "mimetype", is stored as it is, so
// that the kind of the file can be read at a fixed place of it. Packing is minizip's work; this
// gives it memory to write to, since it goes back to entries when they are complete and an
// Output cannot. The same content gives the same bytes: entries are dated alike.
// Tests: tests/writers/odf_package_test.cpp.
#pragma once

#include "output.h"

#include <cstddef>
#include <string>
#include <string_view>

namespace pfsdoc {

class OdfPackage {
public:
    OdfPackage();
    ~OdfPackage();
    OdfPackage(const OdfPackage &) = delete;
    OdfPackage &operator=(const OdfPackage &) = delete;

    // Entries are written one after the other; one that has ended is not gone back to. Throws
    // std::bad_alloc: memory is all that can run out.
    void write(std::string_view entry, std::string_view bytes);
    // Completes the package and writes it out.
    void finish(Output &output);

    // The memory that the archive grows in.
    struct Memory {
        std::string bytes;
        std::size_t position = 0;
    };

private:
    void begin_entry(std::string_view entry, bool compressed);
    void end_entry();

    Memory memory_;
    void *archive_; // null when complete
    std::string entry_;
};

// One entry of a package, as an output.
class PackageEntry final : public Output {
public:
    PackageEntry(OdfPackage &package, std::string_view name) : package_(package), name_(name) {}

    void write(std::string_view bytes) override
    {
        package_.write(name_, bytes);
    }

private:
    OdfPackage &package_;
    std::string_view name_;
};

} // namespace pfsdoc
