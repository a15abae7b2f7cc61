// The committed samples: each equals what its description builds, and each is read back completely.
#include "tests/builder/descriptions.h"

#include <filesystem>
#include <glob.h>

using namespace builder_tests;
using namespace pfs_builder;

namespace {

std::vector<std::filesystem::path> descriptions()
{
    glob_t matches{};
    ::glob(SAMPLES_DIRECTORY "/*/*.description", 0, nullptr, &matches);
    std::vector<std::filesystem::path> found(matches.gl_pathv, matches.gl_pathv + matches.gl_pathc);
    ::globfree(&matches);
    return found;
}

Parsed parse(const std::filesystem::path &path)
{
    const IncludeReader reader = [&path](const std::string &name) -> std::optional<Included> {
        return Included{name, read_file(path.parent_path() / name)};
    };
    Parsed result = parse_description(read_file(path), path, reader);
    EXPECT_FALSE(result.fault) << to_string(*result.fault);
    return result;
}

std::size_t visible_characters(const Document &document)
{
    return said_by(document).size();
}

} // namespace

TEST(BuilderSamples, ThereIsALetterAndAProseTextOfEachKind)
{
    for (const std::string name : {"letter", "prose"}) {
        std::vector<Kind> of_kind;
        for (const std::filesystem::path &path : descriptions()) {
            if (path.stem() == name) {
                of_kind.push_back(parse(path).document.kind);
            }
        }
        std::sort(of_kind.begin(), of_kind.end());
        EXPECT_EQ(std::unique(of_kind.begin(), of_kind.end()) - of_kind.begin(), 7) << name;
    }
}

TEST(BuilderSamples, EachIsWhatItsDescriptionBuilds)
{
    for (const std::filesystem::path &path : descriptions()) {
        const Built built = build(parse(path).document);
        ASSERT_FALSE(built.fault) << to_string(*built.fault);
        const std::string file(built.bytes.begin(), built.bytes.end());
        std::filesystem::path document = path;
        document.replace_extension(".doc");
        EXPECT_TRUE(file == read_file(document)) << document << ": run scripts/build-samples";
    }
}

TEST(BuilderSamples, EachIsReadBackCompletely)
{
    for (const std::filesystem::path &path : descriptions()) {
        const Document document = parse(path).document;
        const Built built = build(document);
        ASSERT_FALSE(built.fault) << to_string(*built.fault);
        const std::string file(built.bytes.begin(), built.bytes.end());
        EXPECT_TRUE(same(heard_from(file), said_by(document))) << path;
    }
}

TEST(BuilderSamples, ProseFillsFivePages)
{
    constexpr std::size_t five_pages = 15000;
    for (const std::filesystem::path &path : descriptions()) {
        if (path.stem() == "prose") {
            EXPECT_GE(visible_characters(parse(path).document), five_pages) << path;
        }
    }
}
