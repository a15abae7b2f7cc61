// What a JSON object of a span holds.
#include "lib/explain/explain_json.h"

#include "tests/lib/explain/explained.h"

#include <nlohmann/json.hpp>

namespace {

using namespace tests;
using namespace pfsdoc;

std::string json(const Span &span)
{
    StringOutput output;
    explaining::ExplainJsonWriter(output, CodePage::ibm437()).span(span);
    return output.text;
}

TEST(ExplainJson, LeavesOutWhatDoesNotApply)
{
    EXPECT_EQ(json(span_with(SpanKind::unused, bytes("00 0A"), "not used")),
              R"({"offset":100,"length":2,"kind":"unused","words":"not used","hex":"000A"})"
              "\n");
}

TEST(ExplainJson, HoldsTextAndAttributes)
{
    Span span = span_with(SpanKind::attributed_text, bytes("C1 03 82 43"), "text");
    span.characters = "A\x82";
    span.attributes = attribute_bit(2) | attribute_bit(4);
    span.attribute_bytes = 1;
    EXPECT_EQ(json(span), R"({"offset":100,"length":4,"kind":"attributed_text","words":"text",)"
                          R"("hex":"C1038243","text":"Aé","attributes":["bold","underline"],)"
                          R"("attribute_bytes":1})"
                          "\n");
}

TEST(ExplainJson, ReportsLineEnds)
{
    Span span = span_with(SpanKind::line_end, "\r", "line end, soft");
    span.characters = " ";
    span.line_end = LineEnd::soft;
    span.disputed = true;
    EXPECT_EQ(json(span), R"({"offset":100,"length":1,"kind":"line_end",)"
                          R"("words":"line end, soft","hex":"0D","text":" ",)"
                          R"("line_end":"soft","disputed":true})"
                          "\n");
}

// The bytes of a file's objects, concatenated, are the file.
TEST(ExplainJson, HoldsEveryByte)
{
    for (const KindExample &example : kind_examples()) {
        const std::string document = document_of(example.kind, bytes(example.body));
        std::string hex;
        for (const Span &span : spans_of(document)) {
            const nlohmann::json object = nlohmann::json::parse(json(span));
            EXPECT_EQ(object["offset"].get<std::size_t>(), hex.size() / 2);
            hex += object["hex"].get<std::string>();
        }
        std::string expected;
        for (const char byte : document) {
            constexpr std::string_view digits = "0123456789ABCDEF";
            expected += digits[static_cast<unsigned char>(byte) >> 4];
            expected += digits[static_cast<unsigned char>(byte) & 0x0F];
        }
        EXPECT_EQ(hex, expected);
    }
}

} // namespace
