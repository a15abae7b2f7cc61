// A plug-in that says it was compiled from other headers. It has no writer: nothing may call
// it.
#include "lib/writers/odf_plugin.h"

namespace {

constexpr pfsdoc::writers::OdfPlugin plugin{"another build", nullptr};

} // namespace

extern "C" const pfsdoc::writers::OdfPlugin *pfsdoc_odf_plugin();

extern "C" const pfsdoc::writers::OdfPlugin *pfsdoc_odf_plugin()
{
    return &plugin;
}
