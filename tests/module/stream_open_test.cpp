// Opening a document step by step, the section, reporting positions and seeking, and the choice of
// the line reader.
#include "tests/module/bench.h"

#include "vs_pfs/document_headers.h"
#include "vs_pfs/line_readers.h"

#include <gtest/gtest.h>

#include <array>
#include <cstring>

namespace {

using namespace tests;
using namespace vs_pfs;

std::string name_for(int32_t file_id, const std::string &document)
{
    RecordingHost host(document);
    VwFileDescription description;
    std::memset(&description, 0x5A, sizeof description);
    VwStreamOpen(host.stream, file_id, nullptr, &description, host.instance);
    EXPECT_EQ(description.fileKindCode, 120);
    EXPECT_EQ(description.fileDescFlags, 1);
    return description.fileKindName;
}

TEST(FileDescription, NamesTheKindOfEachFileId)
{
    const std::string document = write_document(2, "body");
    EXPECT_EQ(name_for(1012, document), "PFS: WRITE A");
    EXPECT_EQ(name_for(1013, document), "PFS: WRITE B");
    EXPECT_EQ(name_for(1014, document), "Professional Write 1");
    EXPECT_EQ(name_for(1015, document), "Professional Write 2");
    EXPECT_EQ(name_for(1016, document), "IBM Writing Assistant");
    EXPECT_EQ(name_for(1017, document), "PFS: First Choice 2.0");
    EXPECT_EQ(name_for(1058, document), "PFS: First Choice 3.0");
}

TEST(FileDescription, NamesFirstChoice3ForEveryOtherFileId)
{
    for (const int32_t id : {2000, 0, -1, 1011, 1018, 32767, -32768}) {
        EXPECT_EQ(name_for(id, write_document(2, "body")), "PFS: First Choice 3.0") << id;
    }
}

TEST(FileDescription, FollowsTheFileIdAndNotTheContent)
{
    EXPECT_EQ(name_for(1012, choice_document('3', bytes("0E"))), "PFS: WRITE A");
}

TEST(FileDescription, ReadsTheFileIdAsASixteenBitValue)
{
    EXPECT_EQ(name_for(0x10000 + 1012, write_document(2, "body")), "PFS: WRITE A");
}

TEST(FileDescription, IsFilledForAnUnknownDocumentToo)
{
    EXPECT_EQ(name_for(1012, "no document"), "PFS: WRITE A");
}

TEST(FileDescription, MayBeNull)
{
    RecordingHost host(write_document(2, "body"));
    EXPECT_EQ(VwStreamOpen(host.stream, 1012, nullptr, nullptr, host.instance), 0);
    EXPECT_TRUE(host.take().empty());
}

TEST(StreamOpen, RefusesAnUnknownDocumentAndReadsNoHeader)
{
    Bench bench(std::string(2000, 'x'));
    std::memset(&bench.state(), 0x77, sizeof bench.state());
    EXPECT_EQ(bench.open(), -1);
    EXPECT_EQ(bench.state().formatType, format_none);
    EXPECT_EQ(bench.saved().leftMargin, 0);
    EXPECT_EQ(bench.saved().hfPending, 0);
    // Where detection stopped: after the last of the bytes it looks at.
    EXPECT_EQ(bench.tell(), 653U);
}

TEST(StreamOpen, RefusesAnEmptyFile)
{
    Bench bench("");
    EXPECT_EQ(bench.open(), -1);
}

TEST(StreamOpen, ClearsTheFilterStateAndSetsTheStartingValues)
{
    Bench bench(write_document(1, "body"));
    std::memset(&bench.state(), 0xFF, sizeof bench.state());
    ASSERT_TRUE(bench.opens());
    const SavedState &saved = bench.saved();
    EXPECT_EQ(saved.seekPos, 0U);
    EXPECT_EQ(saved.hfPending, 0);
    EXPECT_EQ(saved.skipFirstReturn, 1);
    EXPECT_EQ(saved.pwReaderFlag, 0);
    EXPECT_EQ(saved.pwReaderWord, 0);
    EXPECT_EQ(saved.openEndFlag, 0);
    EXPECT_EQ(saved.hfReaderFlag, 0);
    EXPECT_EQ(saved.attrState, 0);
    EXPECT_EQ(saved.hfAttrState, 0);
    EXPECT_EQ(saved.fontValue, 24);
    EXPECT_TRUE(bench.state().stream == bench.stream);
}

TEST(StreamOpen, LeavesRoutinesAndUserWordsAlone)
{
    Bench bench(write_document(1, "body"));
    const VwInstance before = *bench.instance;
    ASSERT_TRUE(bench.opens());
    EXPECT_EQ(std::memcmp(before.routines, bench.instance->routines, sizeof before.routines), 0);
    EXPECT_EQ(bench.instance->user1, before.user1);
    EXPECT_EQ(bench.instance->user2, before.user2);
}

TEST(StreamOpen, ReportsNothing)
{
    RecordingHost host(write_document(2, "body", {write_header_line(0, "Header")}));
    ASSERT_EQ(host.open(), 0);
    EXPECT_TRUE(host.take().empty());
}

TEST(StreamOpenChoice, LeavesTheStreamAtTheBodyWhateverTheHeaderHolds)
{
    for (const char filler : {'\x00', '\xFF', 'T'}) {
        Bench bench(choice_document('1', "body", {{19, std::string(493, filler)}}));
        ASSERT_TRUE(bench.opens());
        EXPECT_EQ(bench.tell(), 512U);
        EXPECT_EQ(VwCharGet(bench.stream), 'b');
    }
}

TEST(StreamOpenChoice, SetsOffsetsAndFlags)
{
    Bench bench(choice_document('2', "body"));
    ASSERT_TRUE(bench.opens());
    EXPECT_EQ(bench.state().formatType, format_first_choice);
    EXPECT_EQ(bench.saved().seekPos, 512U);
    EXPECT_EQ(bench.saved().skipFirstReturn, 0);
    EXPECT_EQ(bench.saved().openEndFlag, 0);
    EXPECT_EQ(bench.state().hfTextPos[0], 29U);
    EXPECT_EQ(bench.state().hfTextPos[1], 111U);
    EXPECT_EQ(bench.state().hfTextPos[2], 193U);
    EXPECT_EQ(bench.state().hfTextPos[3], 275U);
}

TEST(StreamOpenChoice, OpensADocumentThatIsCutInItsHeader)
{
    Bench bench(choice_document('3', "").substr(0, 30));
    ASSERT_TRUE(bench.opens());
    EXPECT_EQ(bench.tell(), 512U);
    EXPECT_EQ(VwCharGet(bench.stream), -1);
}

TEST(StreamOpenWrite, SetsTheOffsetsOfTheHeaderTexts)
{
    for (int type = 1; type <= 5; ++type) {
        Bench bench(write_document(type, "body"));
        ASSERT_TRUE(bench.opens());
        EXPECT_EQ(bench.state().formatType, type);
        EXPECT_EQ(bench.state().hfTextPos[0], 329U);
        EXPECT_EQ(bench.state().hfTextPos[1], 403U);
        EXPECT_EQ(bench.state().hfTextPos[2], 485U);
        EXPECT_EQ(bench.state().hfTextPos[3], 559U);
    }
}

TEST(StreamOpenWrite, TheFirstBodyByteIsDeliveredFirst)
{
    Bench bench(write_document(2, "body"));
    ASSERT_TRUE(bench.opens());
    EXPECT_EQ(bench.tell(), write_body_offset);
    EXPECT_TRUE(matches(after_announcements(bench.read()), "'body' | 13 2 0"));
}

TEST(StreamOpenWrite, ReadsTheHeaderOfItsKind)
{
    for (int type = 1; type <= 4; ++type) {
        Bench bench(write_document(type, "body", {write_margins(9, 70)}));
        ASSERT_TRUE(bench.opens());
        EXPECT_EQ(bench.saved().leftMargin, 9);
        EXPECT_EQ(bench.saved().rightMargin, 70);
    }
}

TEST(StreamOpenWrite, AFormFeedInTheHeaderIsNotTaken)
{
    Bench bench(write_document(2, "body", {{1000, "\x0C"}, {1023, "\x0C"}}));
    ASSERT_TRUE(bench.opens());
    EXPECT_EQ(bench.tell(), write_body_offset);
}

TEST(StreamOpenWrite, SkipsToTheFirstFormFeed)
{
    Bench bench(write_document(2, bytes("'and more' 0C 'body'"), {{1024, "junk"}}));
    ASSERT_TRUE(bench.opens());
    EXPECT_TRUE(matches(after_announcements(bench.read()), "'body' | 13 2 0"));
}

TEST(StreamOpenWrite, OpensWithoutAFormFeed)
{
    Bench bench(write_document(2, "body", {{1024, "x"}}));
    ASSERT_TRUE(bench.opens());
    EXPECT_EQ(bench.saved().openEndFlag, 1);
    EXPECT_TRUE(matches(after_announcements(bench.read()), "13 2 0"));
}

TEST(StreamOpenWrite, OpensWithoutABody)
{
    Bench bench(write_document(2, ""));
    ASSERT_TRUE(bench.opens());
    EXPECT_EQ(bench.saved().openEndFlag, 1);
    EXPECT_TRUE(matches(after_announcements(bench.read()), "13 2 0"));
}

TEST(StreamOpenWrite, OpensADocumentThatIsCutInItsHeader)
{
    for (const std::size_t size : {650U, 830U, 1000U, 1024U}) {
        Bench bench(write_document(2, "body").substr(0, size));
        ASSERT_TRUE(bench.opens());
        EXPECT_EQ(bench.saved().openEndFlag, 1);
    }
}

TEST(StreamOpenWrite, AppliesConsecutiveMarginRecords)
{
    Bench bench(write_document(2, bytes("07 05 01 0B 47 07 07 01 0C 48 00 00 'body'")));
    ASSERT_TRUE(bench.opens());
    EXPECT_EQ(bench.saved().leftMargin, 11);
    EXPECT_EQ(bench.saved().rightMargin, 71);
    EXPECT_EQ(bench.saved().openEndFlag, 0);
    EXPECT_EQ(bench.tell(), write_body_offset + 12);
}

TEST(StreamOpenWrite, AppliesBothOfTwoRecordsOfDifferentTypes)
{
    Bench bench(write_document(2, bytes("07 05 01 0B 47 07 08 02 'AAAAA' 'body'")));
    ASSERT_TRUE(bench.opens());
    EXPECT_EQ(bench.saved().leftMargin, 10);
    EXPECT_EQ(bench.saved().rightMargin, 70);
    EXPECT_TRUE(matches(after_announcements(bench.read()), "'body' | 13 2 0"));
}

TEST(StreamOpenWrite, ARecordAtTheEndOfTheDataLeavesNoBody)
{
    Bench bench(write_document(2, bytes("07 05 01 0B")));
    ASSERT_TRUE(bench.opens());
    EXPECT_EQ(bench.saved().leftMargin, 10);
    EXPECT_EQ(bench.saved().rightMargin, 0xFFFE);
    EXPECT_EQ(bench.saved().openEndFlag, 1);
}

TEST(StreamOpenWrite, ByteEightHundredThirtySixIsLookedAtInProfessionalWriteOnly)
{
    for (int type = 1; type <= 5; ++type) {
        const bool professional = type >= 4;
        Bench set(write_document(type, "body", {{836, "\x01"}}));
        ASSERT_TRUE(set.opens());
        EXPECT_EQ(set.saved().openEndFlag, professional ? 1 : 0) << type;
        Bench clear(write_document(type, "body", {{835, "\x01"}, {837, "\x01"}}));
        ASSERT_TRUE(clear.opens());
        EXPECT_EQ(clear.saved().openEndFlag, 0) << type;
    }
}

TEST(StreamOpenWrite, TheFlagOfAProfessionalWriteDocumentDoesNotStopItsReading)
{
    Bench bench(write_document(4, bytes("00 'body' 0E"), {{836, "\x01"}}));
    ASSERT_TRUE(bench.opens());
    EXPECT_TRUE(matches(after_announcements(bench.read()), "'body' | 13 2 0"));
}

TEST(StreamSection, ReportsTheSectionStart)
{
    Bench bench(write_document(2, "body"));
    ASSERT_TRUE(bench.opens());
    EXPECT_EQ(bench.section(), 0);
    EXPECT_TRUE(matches(bench.take(), "26 0"));
}

TEST(StreamTell, StoresThePositionOfTheNextByte)
{
    Bench bench(write_document(2, "body"));
    ASSERT_TRUE(bench.opens());
    uint32_t position = 0;
    EXPECT_EQ(VwStreamTell(bench.stream, &position), 0);
    EXPECT_EQ(position, write_body_offset);
}

TEST(StreamSeek, MovesToAnAbsolutePosition)
{
    Bench bench(write_document(2, "body"));
    ASSERT_TRUE(bench.opens());
    for (const uint32_t position : {1027U, 5U, 4000U}) {
        EXPECT_EQ(VwStreamSeek(bench.stream, &position), 0);
        EXPECT_EQ(bench.tell(), position);
    }
}

TEST(StreamSeek, FailsWhenTheBlockFileRefuses)
{
    Bench bench(write_document(2, "body"));
    ASSERT_TRUE(bench.opens());
    const VwInstance before = *bench.instance;
    bench.file.fail_seeks = true;
    const uint32_t position = 9000;
    EXPECT_EQ(VwStreamSeek(bench.stream, &position), -1);
    EXPECT_EQ(std::memcmp(&before, bench.instance, sizeof before), 0);
}

TEST(StreamRead, WithoutADetectedFormatReportsTabStopsOnly)
{
    for (const uint8_t type : std::initializer_list<uint8_t>{0, 7, 255}) {
        Bench bench("text");
        bench.state().formatType = type;
        EXPECT_TRUE(matches(bench.read(), no_tab_stops));
        EXPECT_EQ(bench.file.reads, 0U);
        EXPECT_EQ(bench.tell(), 0U);
    }
}

TEST(StreamRead, StoresTheStreamItIsGiven)
{
    Bench bench("text");
    bench.state().stream = nullptr;
    bench.read();
    EXPECT_TRUE(bench.state().stream == bench.stream);
}

// One byte of each body is read differently by each reader.
TEST(StreamRead, GivesEachKindToItsReader)
{
    for (int type = 1; type <= 3; ++type) {
        Bench write(write_document(type, bytes("0D 'a' 0C 'b' 0E")));
        ASSERT_TRUE(write.opens());
        EXPECT_TRUE(matches(after_announcements(write.read()), "'ab' | 13 2 0")) << type;
    }
    for (int type = 4; type <= 5; ++type) {
        Bench professional(write_document(type, bytes("0D 'a' 0C 'b' 0E")));
        ASSERT_TRUE(professional.opens());
        EXPECT_TRUE(matches(after_announcements(professional.read()), "1 13 | 'ab' | 13 2 0"));
    }
    for (const char generation : {'1', '2', '4'}) {
        Bench choice(choice_document(generation, bytes("'a' 0C 'b' 0E")));
        ASSERT_TRUE(choice.opens());
        EXPECT_TRUE(matches(after_announcements(choice.read()),
                            "'a' | 46 1 240 0 0 | 13 1 0 | 'b' | 13 2 0"));
    }
    Bench choice3(choice_document('3', bytes("00 'a' 0C 'b' 0E")));
    ASSERT_TRUE(choice3.opens());
    EXPECT_TRUE(matches(after_announcements(choice3.read()), "'a' | 1 12 | 'b' | 13 2 0"));
}

TEST(StreamRead, TakesTheGenerationThreeOnly)
{
    for (const uint16_t version : std::initializer_list<uint16_t>{0, 2, 4, 0xFFFD, 0x0103}) {
        Bench bench(choice_document('2', bytes("'a' 0E")));
        ASSERT_TRUE(bench.opens());
        bench.state().fcVersion = version;
        EXPECT_TRUE(matches(after_announcements(bench.read()), "'a' | 13 2 0")) << version;
    }
}

TEST(LineReaders, ReturnNothingButZero)
{
    using Reader = int32_t (*)(VwCharStream *, VwInstance *);
    const std::array<std::pair<Reader, std::string>, 4> readers{{
        {read_pfs_line, write_document(2, bytes("0D 0D 0E"), {write_header_line(0, "H")})},
        {read_pfs_12_line, write_document(4, bytes("00 00 0E"), {write_header_line(0, "H")})},
        {read_choice_line, choice_document('2', bytes("0C 0E"), {choice_header_line(0, "H")})},
        {read_choice3_line,
         choice_document('3', bytes("40 01 0D 0E"), {choice_header_line(0, "H")})},
    }};
    for (const auto &[reader, document] : readers) {
        Bench bench(document);
        ASSERT_TRUE(bench.opens());
        bench.stop_at_all();
        for (const char *exit : {"stopped in the header", "stopped in the text", "ended"}) {
            bench.checker.read_begins();
            EXPECT_EQ(reader(bench.stream, bench.instance), 0) << exit;
        }
        EXPECT_TRUE(bench.document_ended);
    }
}

TEST(StreamRead, BeginsEachCallWithTheTabStops)
{
    Bench bench(choice_document('2', bytes("'a' 0C 'b' 0C 0E"), {{366, "\x10"}}));
    ASSERT_TRUE(bench.opens());
    bench.stop_at_all();
    const std::string announcements =
        "8 | 10 1 0 0 576 | 9 |" + attributes_off + "11 0 8640 |" + line_defaults;
    EXPECT_TRUE(matches(bench.read(), announcements + "'a' | 46 1 240 0 0 | 13 1 0"));
    EXPECT_TRUE(matches(bench.read(), announcements + "'b' | 46 1 240 0 0 | 13 1 0"));
    EXPECT_TRUE(matches(bench.read(), announcements + "13 2 0"));
}

} // namespace
