#include "bench/benchmarks.h"

namespace bench {

const std::vector<ReaderCase> &reader_cases()
{
    using pfs_builder::Kind;
    static const std::vector<ReaderCase> cases = {
        {"Write", Kind::write_b},
        {"Writing Assistant", Kind::writing_assistant},
        {"Professional Write", Kind::professional_write_2},
        {"First Choice 2", Kind::first_choice_2},
        {"First Choice 3", Kind::first_choice_3},
    };
    return cases;
}

} // namespace bench
