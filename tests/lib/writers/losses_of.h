// A loss report on one line: "underline 2, indents 1".
#pragma once

#include "pfsdoc/loss_report.h"

#include <string>
#include <vector>

namespace tests {

inline std::string listed(const std::vector<pfsdoc::LossEntry> &losses)
{
    std::string list;
    for (const pfsdoc::LossEntry &entry : losses) {
        list.append(list.empty() ? "" : ", ").append(pfsdoc::loss_name(entry.loss));
        list.append(" ").append(std::to_string(entry.count));
    }
    return list;
}

} // namespace tests
