// The header of the Write family: a kind, then the file from its start, over which the kind's
// signature is written. The header's tab table must be complete and its lines must be read.
#include "fuzz/fuzz_host.h"
#include "fuzz/fuzz_input.h"
#include "vs_pfs/filter_interface.h"

#include "tests/support/raw_documents.h"

namespace {

constexpr std::size_t signature_position = 641;
constexpr std::size_t signature_and_variant = 9;
constexpr int format_types = 5;
constexpr uint16_t most_header_stops = 77;

// Two lists that are sorted as signed numbers, merged: the table is sorted too.
void check_tab_table(const vs_pfs::SavedState &saved)
{
    fuzz::require(saved.tabCount <= most_header_stops, "more tab stops than the ruler holds");
    for (int i = 0; i + 1 < saved.tabCount; ++i) {
        fuzz::require(static_cast<int16_t>(saved.tabPos[i]) <=
                          static_cast<int16_t>(saved.tabPos[i + 1]),
                      "tab stops out of order");
    }
    for (int i = 0; i < saved.tabCount; ++i) {
        fuzz::require(saved.tabKind[i] == vs_pfs::tab_kind_ordinary ||
                          saved.tabKind[i] == vs_pfs::tab_kind_decimal,
                      "a tab stop of no kind");
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, std::size_t size)
{
    fuzz::Input input(data, size);
    const int format_type = 1 + input.byte() % format_types;
    const std::string model = tests::write_document(format_type, {});
    std::string document = input.rest();
    if (document.size() > signature_position) {
        document.replace(signature_position, signature_and_variant, model, signature_position,
                         signature_and_variant);
    }
    fuzz::Host host(document);
    if (!host.open()) {
        return 0;
    }
    if (host.instance->state.formatType == format_type) { // and not First Choice after all
        check_tab_table(host.instance->state.saved);
    }
    host.read_all();
    return 0;
}
