// Each output format's entry, defined in the format's own file.
#pragma once

#include "pfsdoc/writer.h"

namespace pfsdoc::writers {

extern const Format json_format;
extern const Format markdown_format;
extern const Format pandoc_format;
extern const Format html_format;
extern const Format fodt_format;
extern const Format odt_format;
extern const Format text_format;
extern const Format trace_format;

} // namespace pfsdoc::writers
