// Runs a fuzz target over files, and over all files of directories, without a fuzzing engine.
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, std::size_t size);

namespace {

namespace fs = std::filesystem;

bool run_file(const fs::path &path)
{
    std::ifstream stream(path, std::ios::binary);
    if (!stream) {
        std::fprintf(stderr, "replay: cannot read %s\n", path.c_str());
        return false;
    }
    const std::string bytes((std::istreambuf_iterator<char>(stream)), {});
    // Printed first, so that the input of a trap is known.
    std::printf("%s\n", path.c_str());
    std::fflush(stdout);
    LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t *>(bytes.data()), bytes.size());
    return true;
}

// The number of files run, or -1 if one cannot be read.
int run(const fs::path &path)
{
    if (!fs::is_directory(path)) {
        return run_file(path) ? 1 : -1;
    }
    int count = 0;
    for (const auto &entry : fs::directory_iterator(path)) {
        if (!run_file(entry.path())) {
            return -1;
        }
        ++count;
    }
    return count;
}

} // namespace

int main(int argc, char **argv)
{
    int count = 0;
    for (int i = 1; i < argc; ++i) {
        const int files = run(argv[i]);
        if (files < 0) {
            return 1;
        }
        count += files;
    }
    if (count == 0) {
        std::fprintf(stderr, "usage: %s FILE_OR_DIRECTORY...\n", argv[0]);
        return 2;
    }
    std::printf("%d inputs\n", count);
    return 0;
}
