// Names for the output, made of names from outside: archives and lists may hold any bytes, and
// a name that they choose must neither leave the output folder nor hide another file.
//
// Each part of a path is made safe by itself. It is escaped (lib/base/escaped_name.h), so that
// different names of one folder stay different. Parts that name no file ("", ".") go, and ".." is
// written with escapes, as is the start of a part that looks like a temporary file of ours. Long
// names are cut to what file systems take.
//
// Paths that differ can become the same name by that, lists can name a file twice, and file systems
// can take different names for the same: NameSet tells them apart before anything is written.
// Tests: tests/batch/trusted/names_test.cpp.
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

// As the least distinguishing file systems compare names: in Unicode's canonical decomposition,
// with full case folding, and without characters that are ignored by default. Of UTF-8.
std::string folded_name(std::string_view name);

// The names of a run, and the paths in its output folder that follow from them: an output's path is
// its name with the extension behind it. No two paths are the same, and none is a folder of
// another's, however the file system compares names. Who comes later gets a number before its
// ending: "a (2).doc". The same names in the same order always get the same numbers.
class NameSet {
public:
    // The extension is that of the outputs, without its dot.
    explicit NameSet(const std::string &extension) : ending_("." + extension) {}

    // A file in the output folder that is not an output.
    void reserve(const std::string &path);
    // The name of a file. Where it has no last part, it is given one.
    std::string unique(const std::string &name);
    // The name of a folder or an archive that was named, whose files' names begin with it. It is no
    // other file's name either.
    std::string unique_folder(const std::string &name);

private:
    struct Path {
        std::string name;
        std::string folded;
    };
    // What a path in the output folder is used for.
    struct Use {
        uint32_t next_number = 2;   // for another one of that name
        uint32_t folder_number = 0; // of the folder that goes by another name, since this is a file
        bool is_file = false;
        bool is_folder = false; // of an output
        bool is_named = false;  // a folder of unique_folder()
    };

    Use &use_of(const std::string &folded);
    Path child(const Path &folder, std::string_view part) const;
    Path enter(const Path &folder, std::string_view part);
    Path enter_all(std::string_view &name);

    std::string ending_;
    // By the hash of the folded path, some 60 bytes each. Paths of one hash share their use, so the
    // worst that a collision does is a number without need. A tree: nobody can choose names that
    // make it slow.
    std::map<std::size_t, Use> uses_;
};

} // namespace pfsdoc::batch
