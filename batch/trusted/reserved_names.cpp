#include "batch/trusted/reserved_names.h"

#include "batch/trusted/manifest.h"
#include "batch/trusted/run_marker.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

namespace pfsdoc::batch {

ReservedNames::ReservedNames(const std::string &output_folder, const std::string &manifest)
    : names_{std::string(marker_name)}
{
    namespace fs = std::filesystem;
    std::error_code failure;
    const fs::path folder = fs::weakly_canonical(fs::absolute(output_folder), failure);
    const fs::path file = fs::weakly_canonical(fs::absolute(manifest).parent_path(), failure) /
                          fs::path(manifest).filename();
    const std::string name = file.lexically_relative(folder);
    if (failure || name.empty() || name == ".." || name.starts_with("../")) {
        return;
    }
    for (const char *ending : {"", partial_ending, earlier_ending, new_earlier_ending}) {
        names_.push_back(name + ending);
    }
}

bool ReservedNames::is(std::string_view name) const
{
    return std::find(names_.begin(), names_.end(), name) != names_.end();
}

} // namespace pfsdoc::batch
