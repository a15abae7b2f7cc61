// Names of files in the text of manifests, of `pfsdoc identify` and of outputs' names: a name is
// any bytes, and all that could not stand in a text, or would stand there unseen, is written as
// `\xHH`, byte by byte. So is the backslash: each `\xHH` in an escaped name is one byte of the
// name, and what else is there stands for itself. Test: tests/lib/base/escaped_name_test.cpp.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace pfsdoc::base {

// Two names have never the same escaped form. The form is UTF-8 and one line, and it is fit for
// terminals, JSON and XML; what is escaped beside the backslash is what printable() escapes.
std::string escaped_name(std::string_view name);

// The name again; nothing where no name has this escaped form.
std::optional<std::string> unescaped_name(std::string_view escaped);

} // namespace pfsdoc::base
