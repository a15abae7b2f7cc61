// The names in the output folder that are a run's own, and that no output may have: those of the
// manifest and its companions, where it lies there, and the run's marker. Test:
// tests/batch/trusted/reserved_names_test.cpp.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace pfsdoc::batch {

class ReservedNames {
public:
    // Paths as they were named.
    ReservedNames(const std::string &output_folder, const std::string &manifest);

    // By the way from the output folder.
    const std::vector<std::string> &names() const
    {
        return names_;
    }
    bool is(std::string_view name) const;

private:
    std::vector<std::string> names_;
};

} // namespace pfsdoc::batch
