// Which names in the output folder are the run's own.
#include "batch/trusted/reserved_names.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using pfsdoc::batch::ReservedNames;

TEST(ReservedNames, AreThoseOfTheManifestAndTheMarker)
{
    EXPECT_EQ(ReservedNames("out", "out/m.ndjson").names(),
              (std::vector<std::string>{".pfsdoc-run", "m.ndjson", "m.ndjson.partial",
                                        "m.ndjson.earlier", "m.ndjson.earlier.new"}));
}

TEST(ReservedNames, FollowTheManifest)
{
    const ReservedNames below("out", "./out/../out/lists/m");
    EXPECT_TRUE(below.is("lists/m"));
    EXPECT_TRUE(below.is("lists/m.partial"));
    EXPECT_FALSE(below.is("lists"));
    EXPECT_FALSE(below.is("lists/m/letter"));
    EXPECT_FALSE(below.is("m"));
    for (const char *elsewhere : {"outer/m", "m", "out/../m"}) {
        EXPECT_EQ(ReservedNames("out", elsewhere).names(), std::vector<std::string>{".pfsdoc-run"});
    }
}

} // namespace
