// Names for the output, made of names from outside: archives and lists may hold any bytes, and
// a name that they choose must neither leave the output folder nor hide another file.
//
// Each part of a path is made safe by itself. What cannot be shown is written as \xNN, as
// lib/base/printable.h does it; a backslash too, so that different names of one folder stay
// different. Parts that name no file ("", ".") go, and ".." is written with escapes. Long names
// are cut to what file systems take. Paths that differ can become the same name by that, and
// lists can name a file twice: NameSet tells them apart. Tests: tests/batch/trusted/names_test.cpp.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>

namespace pfsdoc::batch {

enum class Separators {
    slash,
    slash_and_backslash // as archives made on DOS have them
};

// What file systems take, with room for a number and for the output's ending.
constexpr std::size_t longest_name_part = 200;
constexpr std::size_t longest_name = 2000;

// Empty where the path has no part that could name anything.
std::string safe_name(std::string_view path, Separators separators);

// Two safe names, of which the first may be empty.
std::string below(const std::string &folder, const std::string &name);

// Whether the ending is that of an archive that can be read.
bool is_archive_name(std::string_view name);

class NameSet {
public:
    // The name itself the first time, then numbered ones: "a (2).doc". An empty name is given
    // one.
    std::string unique(const std::string &name);

private:
    // The number that comes next for each name, by its hash. Names of one hash share their
    // numbers, so the worst that a collision does is a number without need. A tree: nobody can
    // choose names that make it slow.
    std::map<std::size_t, uint64_t> next_number_;
};

} // namespace pfsdoc::batch
