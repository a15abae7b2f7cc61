// A document in OpenDocument that was told in portions. Each portion is a document of
// libodfgen's, which keeps all of it until its end and then writes one XML stream after the
// other; the streams with the body are joined, and of the others the last portion's are used.
// Then the generator and what it kept are gone. Tests: tests/lib/writers/odf_portions_test.cpp.
#pragma once

#include "lib/writers/odf/revenge_writer.h"
#include "lib/writers/odf_plugin.h"

#include <memory>
#include <span>

namespace pfsdoc::writers {

class OdfPortions : public Portions {
public:
    // After the last portion has ended.
    virtual void finish(Output &output) = 0;
};

// The files are those of WriterOptions: one for the styles of paragraphs, one for the body, and
// one for the package.
std::unique_ptr<OdfPortions> make_odf_portions(OdfPackaging packaging, std::span<const int> files);

} // namespace pfsdoc::writers
