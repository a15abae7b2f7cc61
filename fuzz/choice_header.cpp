// The header of First Choice: a generation, then the file from its start, over which the magic
// and the generation are written. The header's tab table must be complete.
#include "fuzz/fuzz_host.h"
#include "fuzz/fuzz_input.h"
#include "vs_pfs/filter_interface.h"

namespace {

constexpr std::size_t magic_position = 9;
constexpr std::size_t magic_and_generation = 10;

void check_tab_table(const vs_pfs::SavedState &saved)
{
    fuzz::require(saved.tabCount <= vs_pfs::most_tab_stops, "more tab stops than the table holds");
    fuzz::require(saved.tabPos[saved.tabCount] == vs_pfs::tab_table_end, "an open tab table");
    for (int i = 0; i + 1 < saved.tabCount; ++i) {
        fuzz::require(saved.tabPos[i] < saved.tabPos[i + 1], "tab stops out of order");
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, std::size_t size)
{
    fuzz::Input input(data, size);
    const char generation = static_cast<char>('0' + input.byte() % 4);
    std::string document = input.rest();
    if (document.size() > magic_position) {
        document.replace(magic_position, magic_and_generation,
                         std::string("GERBILDOC") + generation);
    }
    fuzz::Host host(document);
    if (!host.open()) {
        return 0;
    }
    check_tab_table(host.instance->state.saved);
    host.read_all();
    return 0;
}
