// An OpenDocument package: a zip archive whose first entry, "mimetype", is stored as it is, so
// that the kind of the file can be read at a fixed place of it. Packing is minizip's work; this
// gives it a scratch to write to, since it goes back to entries when they are complete and an
// Output cannot. The same content gives the same bytes: entries are dated alike.
// Tests: tests/lib/writers/odf_package_test.cpp.
#pragma once

#include "lib/writers/odf/scratch.h"
#include "pfsdoc/output.h"

#include <cstdint>
#include <exception>
#include <string>
#include <string_view>

namespace pfsdoc::writers {

class OdfPackage final : public Output {
public:
    // The scratch must outlive the package.
    explicit OdfPackage(Scratch &scratch);
    ~OdfPackage() override;
    OdfPackage(const OdfPackage &) = delete;
    OdfPackage &operator=(const OdfPackage &) = delete;

    // All of these throw what the scratch throws, and std::bad_alloc.

    // The next entry, of so many bytes at most: where these are 4 GB or more its size has to be
    // kept in another way, and room for that lies before its content. What is written goes into
    // it until the next one begins.
    void begin(std::string_view entry, uint64_t most_bytes);
    void write(std::string_view bytes) override;
    // A whole one.
    void add(std::string_view entry, std::string_view bytes)
    {
        begin(entry, bytes.size());
        write(bytes);
    }
    // Completes the package and writes it out.
    void finish(Output &output);

    // Where the archive grows.
    struct Archive {
        Scratch &scratch;
        uint64_t position = 0;
        std::exception_ptr failure; // that could not pass through minizip
    };

private:
    void begin_entry(const std::string &entry, uint64_t most_bytes, bool compressed);
    void end_entry();
    void check(int result) const;

    Archive archive_;
    void *zip_; // null when complete
};

} // namespace pfsdoc::writers
