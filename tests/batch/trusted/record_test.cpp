// A line of the manifest, written and read again.
#include "batch/trusted/record.h"

#include <gtest/gtest.h>

namespace tests {

namespace {

using pfsdoc::batch::FileStatus;

const pfsdoc::batch::RecordedFile file{"a/letter", "x/a\\\xFF", 4, "a/letter.txt"};
const pfsdoc::batch::RecordedRequest request{"text", "txt", "--wrap 7", "m.so"};

pfsdoc::batch::Outcome outcome_of(FileStatus status)
{
    pfsdoc::batch::Outcome outcome;
    outcome.status = status;
    outcome.kind = static_cast<int32_t>(pfsdoc::DocumentKind::first_choice_3);
    outcome.has_input_digest = 1;
    outcome.input_digest = pfsdoc::batch::sha256_of("abc");
    outcome.output_digest = pfsdoc::batch::sha256_of("");
    outcome.output_size = 7;
    return outcome;
}

TEST(Record, IsOneLineOfJson)
{
    pfsdoc::batch::Outcome outcome = outcome_of(FileStatus::damaged);
    outcome.basis.set("basis");
    outcome.confidence = static_cast<int32_t>(pfsdoc::Confidence::likely);
    outcome.set_error({pfsdoc::ErrorKind::damaged, "is cut\n", "look for another", 9});
    outcome.has_counts = 1;
    outcome.counts = {1, 2, 3, 4, 6};
    outcome.after_end_offset = 8;
    outcome.after_end_bytes = 9;
    outcome.losses[static_cast<std::size_t>(pfsdoc::Loss::tab_stops)] = 5;
    EXPECT_EQ(
        pfsdoc::batch::record_line(file, request, outcome),
        R"({"name":"a/letter","source":"x/a\\x5C\\xFF","size":4,)"
        R"("sha256":"ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad",)"
        R"("kind":"PFS: First Choice 3.0","file_id":1058,"puid":"fmt/1283","confidence":"likely",)"
        R"("basis":"basis","status":"damaged",)"
        R"("error":{"words":"is cut\\x0A","remedy":"look for another","offset":9},)"
        R"("counts":{"paragraphs":1,"characters":2,"page_breaks":3,"header_lines":4,)"
        R"("footer_lines":6},)"
        R"("losses":{"tab_stops":5},"after_end":{"offset":8,"bytes":9},"output":{"name":"a/letter.txt","size":7,)"
        R"("sha256":"e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855"},)"
        R"("format":"text","options":"--wrap 7","module":"m.so","pfsdoc":")" PFSDOC_VERSION
        "\"}\n");
}

TEST(Record, OfAFileThatWasNotReadHasNothingOfIt)
{
    const pfsdoc::batch::Outcome outcome = pfsdoc::batch::failed_outcome(
        FileStatus::crashed, {pfsdoc::ErrorKind::internal, "was ended", ""});
    EXPECT_EQ(
        pfsdoc::batch::record_line(file, request, outcome),
        R"({"name":"a/letter","source":"x/a\\x5C\\xFF","size":4,"sha256":null,"kind":null,"file_id":null,)"
        R"("puid":null,"confidence":null,"basis":null,"status":"crashed","error":{"words":"was ended","remedy":""},)"
        R"("counts":null,"losses":{},"after_end":null,"output":null,"format":"text",)"
        R"("options":"--wrap 7","module":"m.so","pfsdoc":")" PFSDOC_VERSION "\"}\n");
}

TEST(Record, IsUsedAgainForTheSameFileAndRequestOnly)
{
    const std::string line =
        pfsdoc::batch::record_line(file, request, outcome_of(FileStatus::converted));
    const auto record = pfsdoc::batch::usable_record(line, file, request);
    ASSERT_TRUE(record.has_value());
    EXPECT_EQ(record->status, FileStatus::converted);
    EXPECT_EQ(record->input, pfsdoc::batch::sha256_of("abc"));
    EXPECT_EQ(record->output, "a/letter.txt");
    EXPECT_EQ(record->output_size, 7U);
    EXPECT_EQ(record->output_digest, pfsdoc::batch::sha256_of(""));
    for (const pfsdoc::batch::RecordedFile &other :
         {pfsdoc::batch::RecordedFile{"b", file.source, 4, ""},
          pfsdoc::batch::RecordedFile{"a/letter", "b", 4, ""},
          pfsdoc::batch::RecordedFile{"a/letter", file.source, 5, ""},
          pfsdoc::batch::RecordedFile{"a/letter", file.source, 4, "b/letter.txt"}}) {
        EXPECT_FALSE(pfsdoc::batch::usable_record(line, other, request).has_value());
    }
    for (const pfsdoc::batch::RecordedRequest &other :
         {pfsdoc::batch::RecordedRequest{"html", "html", "--wrap 7", "m.so"},
          pfsdoc::batch::RecordedRequest{"text", "txt", "", "m.so"},
          pfsdoc::batch::RecordedRequest{"text", "txt", "--wrap 7", ""}}) {
        EXPECT_FALSE(pfsdoc::batch::usable_record(line, file, other).has_value());
    }
    for (std::size_t size = 0; size + 2 < line.size(); ++size) {
        EXPECT_FALSE(pfsdoc::batch::usable_record(line.substr(0, size), file, request).has_value());
    }
}

// Somebody has edited the manifest.
TEST(Record, IsNotUsedWhereItsOutputCannotBe)
{
    const std::string line =
        pfsdoc::batch::record_line(file, request, outcome_of(FileStatus::converted));
    const auto edited = [&line](const std::string &from, const std::string &to) {
        std::string changed = line;
        changed.replace(changed.find(from), from.size(), to);
        return pfsdoc::batch::usable_record(changed, file, request).has_value();
    };
    const std::string name = R"("output":{"name":"a/letter.txt")";
    EXPECT_TRUE(edited(name, name));
    EXPECT_FALSE(edited(name, R"("output":{"name":"")"));
    EXPECT_FALSE(edited(name, R"("output":{"name":"../a/letter.txt")"));
    EXPECT_FALSE(edited(name, R"("output":{"name":"a/other.txt")"));
    EXPECT_FALSE(edited(name, R"("output":null,"old":{"name":"a/letter.txt")"));
    EXPECT_FALSE(edited(R"("size":7)", R"("size":-7)"));
    EXPECT_FALSE(edited(R"("status":"converted")", R"("status":"not_a_document")"));
}

TEST(Record, IsUsedAgainWhereTheOutcomeWouldBeTheSame)
{
    for (std::size_t i = 0; i < pfsdoc::batch::file_status_count; ++i) {
        const auto status = static_cast<FileStatus>(i);
        const bool is_lasting = status == FileStatus::converted || status == FileStatus::damaged ||
                                status == FileStatus::not_a_document || status == FileStatus::limit;
        const std::string line = pfsdoc::batch::record_line(file, request, outcome_of(status));
        EXPECT_EQ(pfsdoc::batch::usable_record(line, file, request).has_value(), is_lasting)
            << line;
    }
}

} // namespace

} // namespace tests
