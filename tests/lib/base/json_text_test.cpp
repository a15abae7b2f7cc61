// JSON strings, parsed again by a library.
#include "lib/base/json_text.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <cstdint>
#include <string>
#include <string_view>

namespace {

std::string json_string(std::string_view utf8)
{
    std::string json;
    pfsdoc::base::append_json_string(json, utf8);
    return json;
}

TEST(JsonText, IsQuoted)
{
    EXPECT_EQ(json_string(""), R"("")");
    EXPECT_EQ(json_string("Dear Sir"), R"("Dear Sir")");
    EXPECT_EQ(json_string("Café ½ ☺"), R"("Café ½ ☺")");
}

TEST(JsonText, EscapesWhatWouldEndIt)
{
    EXPECT_EQ(json_string(R"("C:\")"), R"("\"C:\\\"")");
}

TEST(JsonText, EscapesControlCharacters)
{
    EXPECT_EQ(json_string("a\tb\nc"), R"("a\tb\nc")");
    EXPECT_EQ(json_string({"\0\x01\x1F", 3}), R"("\u0000\u0001\u001f")");
}

TEST(JsonText, IsAppended)
{
    std::string json = "[";
    pfsdoc::base::append_json_string(json, "one");
    EXPECT_EQ(json, R"(["one")");
}

TEST(JsonText, IsReadAgainAsItWas)
{
    for (unsigned first = 0; first < 0x80; ++first) {
        for (unsigned second = 0; second < 0x80; ++second) {
            const std::string text = {static_cast<char>(first), static_cast<char>(second)};
            EXPECT_EQ(nlohmann::json::parse(json_string(text)).get<std::string>(), text);
        }
    }
}

TEST(JsonText, HasMembersOfObjects)
{
    std::string json = "{";
    pfsdoc::base::append_json_member(json, "words", "a \"{\"");
    pfsdoc::base::append_json_member(json, "number", -7);
    pfsdoc::base::append_json_member(json, "large", UINT64_MAX);
    pfsdoc::base::append_json_name(json, "object");
    json += "{";
    pfsdoc::base::append_json_member(json, "first", 0);
    json += "}";
    pfsdoc::base::append_json_member(json, "last", "{");
    json += "}";
    EXPECT_EQ(json, R"({"words":"a \"{\"","number":-7,"large":18446744073709551615,)"
                    R"("object":{"first":0},"last":"{"})");
    EXPECT_TRUE(nlohmann::json::accept(json));
}

} // namespace
