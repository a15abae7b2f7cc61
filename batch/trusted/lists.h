// Lists of paths: one a line, or with a NUL byte behind each as `find -print0` writes them.
//
// Lists can be longer than memory and come out of pipes, so they are read as they are used. No
// path is longer than longest_path: a list with NUL bytes has one in its first bytes, and those
// tell which sort it is. So a list of lines is waited for until there is as much of it; from
// then on, and with NUL bytes at once, each path is reported as soon as it is there. Tests:
// tests/batch/trusted/inputs_test.cpp.
#pragma once

#include "batch/trusted/entries.h"

#include <string_view>

namespace pfsdoc::batch {

// What the system takes as a path.
constexpr std::size_t longest_path = 4096;

class PathList {
public:
    // "-" is standard input. Where the list cannot be read, next() says so. It has come to its
    // end when waiting for it says that no more is wanted.
    PathList(const std::string &name, WaitForInput wait);

    struct Line {
        std::string path;           // or its beginning, where it has an error
        std::optional<Error> error; // the list's own where path is the list's name
    };
    std::optional<Line> next();

private:
    std::string_view beginning() const;
    void read_part();
    std::optional<std::string_view> raw_line();
    Line too_long();

    std::string name_;
    base::Descriptor file_;
    WaitForInput wait_;
    std::string buffer_;
    std::size_t position_ = 0; // in buffer_, of what was not used yet
    bool at_end_ = false;
    char separator_ = '\n';
    std::optional<Error> failure_; // to be reported behind the lines that were read
};

} // namespace pfsdoc::batch
