// An OpenDocument package: a zip archive whose first entry, "mimetype", is stored as it is, so
// that the kind of the file can be read at a fixed place of it. Packing is minizip's work; this
// gives it a scratch to write to, since it goes back to entries when they are complete and an
// Output cannot. The same content gives the same bytes: entries are dated alike.
// Tests: tests/writers/odf_package_test.cpp.
#pragma once

#include "output.h"
#include "scratch.h"

#include <cstdint>
#include <exception>
#include <string>
#include <string_view>

namespace pfsdoc {

class OdfPackage {
public:
    // The scratch must outlive the package.
    explicit OdfPackage(Scratch &scratch);
    ~OdfPackage();
    OdfPackage(const OdfPackage &) = delete;
    OdfPackage &operator=(const OdfPackage &) = delete;

    // Entries are written one after the other; one that has ended is not gone back to. Throws
    // what the scratch throws, and std::bad_alloc, for an entry that comes to 4 GB too.
    void write(std::string_view entry, std::string_view bytes);
    // Completes the package and writes it out.
    void finish(Output &output);

    // Where the archive grows.
    struct Archive {
        Scratch &scratch;
        uint64_t position = 0;
        std::exception_ptr failure; // that could not pass through minizip
    };

private:
    void begin_entry(std::string_view entry, bool compressed);
    void end_entry();
    void check(int result) const;

    Archive archive_;
    void *zip_; // null when complete
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
