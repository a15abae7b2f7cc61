#include "lib/base/program_directory.h"

#include <system_error>

namespace pfsdoc::base {

std::filesystem::path program_directory()
{
    std::error_code failure;
    return std::filesystem::read_symlink("/proc/self/exe", failure).parent_path();
}

} // namespace pfsdoc::base
