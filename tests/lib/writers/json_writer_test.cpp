// Documents as JSON. tests/judges/json.sh checks every sample against docs/pfsdoc.schema.json.
#include "tests/lib/writers/losses_of.h"
#include "tests/lib/writers/written.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <string>

namespace {

using namespace std::string_literals;
using namespace tests;
using nlohmann::json;
using pfsdoc::WriterOptions;

constexpr int32_t unknown_code = 7;

json document(const TypedEvents &events, const WriterOptions &options = {})
{
    return json::parse(written("json", events, options).text);
}

json first_block(const TypedEvents &events, const WriterOptions &options = {})
{
    return document(events, options).at("blocks").at(0);
}

json first_runs(const TypedEvents &events, const WriterOptions &options = {})
{
    return first_block(events, options).at("runs");
}

TypedEvents small_letter()
{
    TypedEvents events;
    events.at(100).margins(10, 70).tabs({15, 30}, {45});
    events.at(200).header().at(40).text("Head").at(200).paragraph().close_block();
    events.at(200).text("Dear ").attribute(bold, true).text("Sir").attribute(bold, false);
    events.indents(2, 5).at(210).paragraph();
    return events.page_break().at(212).paragraph().at(213).end();
}

TEST(JsonWriter, WritesADocumentAsOneObject)
{
    EXPECT_EQ(
        written("json", small_letter()).text,
        R"({"pfsdoc":1,"document":{"kind":"PFS: WRITE A","file_id":1012,"title":"LETTER","charset":"437"},
"blocks":[
{"type":"header","source_begin":40,"source_end":44,"alignment":"left","left_indent":0,"first_line_indent":0,"line_spacing":240,"left_margin":1440,"right_margin":10080,"tab_stops":[2160,4320],"decimal_tab_stops":[6480],"runs":[{"type":"text","text":"Head","attributes":[],"source":40}]},
{"type":"paragraph","source_begin":200,"source_end":210,"alignment":"left","left_indent":288,"first_line_indent":720,"line_spacing":240,"left_margin":1440,"right_margin":10080,"tab_stops":[2160,4320],"decimal_tab_stops":[6480],"runs":[{"type":"text","text":"Dear ","attributes":[],"source":200},{"type":"text","text":"Sir","attributes":["bold"],"source":205}]},
{"type":"page_break","source":208},
{"type":"paragraph","source_begin":210,"source_end":212,"alignment":"left","left_indent":0,"first_line_indent":0,"line_spacing":240,"left_margin":1440,"right_margin":10080,"tab_stops":[2160,4320],"decimal_tab_stops":[6480],"runs":[]}
],"losses":[],"after_end":null}
)");
}

TEST(JsonWriter, WritesALineForEachBlockWhereAsked)
{
    WriterOptions options;
    options.lines = true;
    TypedEvents events;
    events.line("One").page_break().end();
    EXPECT_EQ(
        written("json", events, options).text,
        R"({"pfsdoc":1,"document":{"kind":"PFS: WRITE A","file_id":1012,"title":"LETTER","charset":"437"}}
{"type":"paragraph","source_begin":0,"source_end":0,"alignment":"left","left_indent":0,"first_line_indent":0,"line_spacing":240,"left_margin":0,"right_margin":0,"tab_stops":[],"decimal_tab_stops":[],"runs":[{"type":"text","text":"One","attributes":[],"source":0}]}
{"type":"page_break","source":0}
{"type":"end","blocks":2,"losses":[],"after_end":null}
)");
}

TEST(JsonWriter, WritesAnEmptyDocument)
{
    EXPECT_EQ(document(TypedEvents().end()).at("blocks"), json::array());
    WriterOptions options;
    options.lines = true;
    const std::string text = written("json", TypedEvents().end(), options).text;
    EXPECT_EQ(text.substr(text.find('\n') + 1), "{\"type\":\"end\",\"blocks\":0,\"losses\":[],\"after_end\":null}\n");
}

TEST(JsonWriter, ReportsWhatFollowsTheEnd)
{
    WriterOptions options;
    for (const bool lines : {false, true}) {
        options.lines = lines;
        pfsdoc::StringOutput output;
        auto writer = pfsdoc::find_format("json")->make_writer(output, {}, options);
        ASSERT_TRUE(writer.ok());
        writer.value()->after_end({1234, 56});
        writer.value()->end_of_document();
        const std::string text = output.text.substr(lines ? output.text.find('\n') + 1 : 0);
        EXPECT_EQ(json::parse(text).at("after_end"), json({{"offset", 1234}, {"bytes", 56}}));
    }
}

TEST(JsonWriter, NamesAttributes)
{
    TypedEvents events;
    for (const int32_t code : {2, 3, 4, 10, 11, unknown_code}) {
        events.attribute(code, true);
    }
    EXPECT_EQ(first_runs(events.line("x")).at(0).at("attributes"),
              json({"bold", "italic", "underline", "code 7", "subscript", "superscript"}));
}

TEST(JsonWriter, ShowsCommandsAndPageBreaksAsRuns)
{
    TypedEvents events;
    events.at(100).text("a").page_break().special("*NEW PAGE*").attribute(italic, true);
    EXPECT_EQ(first_runs(events.special("*J*").line("b")), json::parse(R"([
        {"type": "text", "text": "a", "attributes": [], "source": 100},
        {"type": "page_break", "source": 100},
        {"type": "command", "text": "*NEW PAGE*", "attributes": [], "source": 101},
        {"type": "command", "text": "*J*", "attributes": ["italic"], "source": 111},
        {"type": "text", "text": "b", "attributes": ["italic"], "source": 114}])"));
}

TEST(JsonWriter, MarksATruncatedCommand)
{
    TypedEvents events;
    events.special("*" + std::string(5000, 'x')).paragraph();
    const json command = first_runs(events).at(0);
    EXPECT_EQ(command.at("text").get<std::string>().size(), 4096U);
    EXPECT_EQ(command.at("cut"), true);
    EXPECT_EQ(document(events).at("losses"),
              json::parse(R"([{"what": "cut_command", "count": 1, "first_source": 0}])"));
}

TEST(JsonWriter, HasAParagraphsAlignment)
{
    EXPECT_EQ(first_block(TypedEvents().alignment(VW_ALIGN_RIGHT).line("x")).at("alignment"),
              "right");
    EXPECT_EQ(first_block(TypedEvents().special("*CENTER*").line("x")).at("alignment"), "centre");
    EXPECT_EQ(first_block(TypedEvents().spacing(480).line("x")).at("line_spacing"), 480);
}

TEST(JsonWriter, LeavesEmptyHeaderLinesOut)
{
    TypedEvents events;
    events.header().paragraph().close_block().footer().paragraph().line("f").close_block();
    const json blocks = document(events.end()).at("blocks");
    ASSERT_EQ(blocks.size(), 1U);
    EXPECT_EQ(blocks.at(0).at("type"), "footer");
}

TEST(JsonWriter, LeavesHeadersAndPageBreaksOutWhereAsked)
{
    TypedEvents events;
    events.header().line("h").close_block().page_break().text("a").page_break().line("b").end();
    WriterOptions options;
    options.headers = false;
    options.page_breaks = false;
    const json blocks = document(events, options).at("blocks");
    ASSERT_EQ(blocks.size(), 1U);
    EXPECT_EQ(blocks.at(0).at("runs").size(), 2U);
    EXPECT_EQ(blocks.at(0).at("runs").at(1).at("text"), "b");
}

// ---------------------------------------------------------------------- text ----------

std::string text_of_bytes(std::string_view bytes, const WriterOptions &options = {})
{
    return first_runs(TypedEvents().line(bytes), options).at(0).at("text").get<std::string>();
}

TEST(JsonWriter, WritesTextInUtf8WithTabs)
{
    EXPECT_EQ(text_of_bytes("\tCaf\x82\t\t\xE0 \0\x0D"s), "\tCafé\t\tα  ♪");
}

TEST(JsonWriter, EscapesText)
{
    EXPECT_EQ(text_of_bytes(R"("C:\")"), R"("C:\")");
}

// Every byte has its own character, but for byte 0.
TEST(JsonWriter, KeepsBytesApart)
{
    std::map<std::string, int> bytes;
    for (int byte = 1; byte < 256; ++byte) {
        const auto character = static_cast<char>(byte);
        const auto [found, is_new] = bytes.emplace(text_of_bytes({&character, 1}), byte);
        EXPECT_TRUE(is_new) << byte << " reads as " << found->second;
    }
}

TEST(JsonWriter, CountsCharactersThatTheCharacterSetDoesNotDefine)
{
    const auto page = pfsdoc::CodePage::named("1252");
    ASSERT_TRUE(page.ok());
    WriterOptions options;
    options.code_page = &page.value();
    const TypedEvents events = TypedEvents().at(50).line("a\x81\x8D");
    EXPECT_EQ(first_runs(events, options).at(0).at("text"), "a\uFFFD\uFFFD");
    EXPECT_EQ(document(events, options).at("losses"),
              json::parse(R"([{"what": "character", "count": 2, "first_source": 50}])"));
}

TEST(JsonWriter, LosesNothingElse)
{
    TypedEvents events = small_letter();
    events.special("*OTHER*").line("\ttext");
    EXPECT_EQ(listed(written("json", events).losses), "");
}

// ------------------------------------------------------------------- hostile ----------

TEST(JsonWriter, WritesARunOfAMegabyte)
{
    EXPECT_EQ(text_of_bytes(std::string(1000000, '"')), std::string(1000000, '"'));
}

class LargestWrite final : public pfsdoc::Output {
public:
    void write(std::string_view bytes) override
    {
        largest = std::max(largest, bytes.size());
        total += bytes.size();
    }

    std::size_t largest = 0;
    std::size_t total = 0;
};

TEST(JsonWriter, HandsAParagraphOnInPiecesWhereEveryCharacterIsARun)
{
    const pfsdoc::Format &format = *pfsdoc::find_format("json");
    LargestWrite output;
    auto writer = format.make_writer(output, {}, {});
    ASSERT_TRUE(writer.ok());
    pfsdoc::reading::ParagraphCollector collector(*writer.value());
    TypedEvents events;
    for (int i = 0; i < 200000; ++i) {
        events.attribute(bold, i % 2 == 0).text("x");
    }
    events.paragraph().tell(collector);
    collector.finish();
    EXPECT_GT(output.total, 200000U * 50);
    EXPECT_LT(output.total, 200000U * 70);
    EXPECT_LT(output.largest, 70000U);
}

} // namespace
