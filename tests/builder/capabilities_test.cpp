// What each kind does not support. Every case is one line of a description; `can` and `cannot` are
// file ids.
#include "tests/builder/descriptions.h"

using namespace builder_tests;

namespace {

const std::vector<std::string> all_kinds = {"1012", "1013", "1014", "1015", "1016", "1017", "1058"};

// The kinds, by id, that support `header` and `body`.
std::string kinds_that_say(const std::string &header, const std::string &body)
{
    std::string can;
    for (const std::string &kind : all_kinds) {
        if (fault_of("kind: " + kind + "\n" + header + "---\n" + body).empty()) {
            can += (can.empty() ? "" : " ") + kind;
        }
    }
    return can;
}

} // namespace

TEST(BuilderCapabilities, OfTheHeaderPart)
{
    struct {
        const char *line;
        const char *can;
    } const rows[] = {
        {"margins: 10 70\n", "1012 1013 1014 1015 1016 1017 1058"},
        {"margins: 12 60\n", "1012 1013 1014 1016 1017 1058"},
        {"margins: 0 60\n", ""},
        {"margins: 60 60\n", ""},
        {"margins: 10 256\n", ""},
        {"tabs: 15\n", "1012 1013 1014 1016 1017 1058"},
        {"tabs: 15.\n", "1012 1013 1014 1016"},
        {"tabs: 248\n", "1012 1013 1014 1016 1017 1058"},
        {"tabs: 249\n", "1012 1013 1014 1016"},
        {"tabs: 0\n", ""},
        {"signature: WRD PC\n", "1012 1013"},
        {"generation: 1\n", "1017"},
        {"generation: 3\n", "1058"},
        {"generation: 1\ntabs: 99\n", "1017"},
        {"generation: 1\ntabs: 100\n", ""},
        {"header align: centre\n", "1012 1013 1014 1015 1016 1017 1058"},
        {"footer align: left\n", "1013 1014 1015 1016 1017 1058"},
        {"header style: bold underline\n", "1014 1015 1017 1058"},
        {"footer style: italic\n", "1014 1015"},
        {"record: margins 12 60\n", "1012 1013 1014 1015 1016"},
        {"record: raw 02 18\n", "1012 1013 1014 1015 1016"},
        {"record: raw 01 18\n", ""},
        {"record: margins 60 12\n", ""},
    };
    for (const auto &row : rows) {
        EXPECT_EQ(kinds_that_say(row.line, ""), row.can) << row.line;
    }
}

TEST(BuilderCapabilities, OfTheBody)
{
    struct {
        const char *text;
        const char *can;
    } const rows[] = {
        {"{b}a{/b}{i}a{/i}{u}a{/u}{sup}a{/sup}", "1012 1013 1014 1015 1016 1017 1058"},
        {"{sub}a{/sub}", "1012 1013 1014 1015 1017 1058"},
        {"é", "1014 1015 1016 1017 1058"},
        {"■", "1014 1015 1016 1017 1058"},
        {"░", "1014 1015 1017 1058"},
        {"\u00A0", "1014 1015 1017 1058"},
        {"@double", "1014 1015 1017"},
        {"@margins 12 60", "1014 1015"},
        {"@font-record 02 18", "1014 1015"},
        {"a{hide}b{/hide} c", "1014 1015"},
        {"{hide}b{/hide} c", ""},
        {"@ruler [T]", "1058"},
        {"@ruler ][", ""},
        {"@ruler [♪]", ""},
        {"@page-break", "1058"},
        {"@page-break ♪", ""},
        {"@raw 41", "1012 1013 1014 1015 1016 1017 1058"},
        {"@spaces 3", "1012 1013 1014 1015 1016 1017 1058"},
        {"*NEW PAGE*", "1012 1013 1014 1015 1016 1017 1058"},
    };
    for (const auto &row : rows) {
        EXPECT_EQ(kinds_that_say("", row.text), row.can) << row.text;
    }
}

TEST(BuilderCapabilities, CountsTabStops)
{
    std::string tabs = "tabs:";
    for (int column = 1; column <= 78; ++column) {
        tabs += " " + std::to_string(column);
    }
    EXPECT_EQ(kinds_that_say(tabs + "\n", ""), "1012 1013 1014 1016 1017 1058");
    EXPECT_EQ(kinds_that_say(tabs + " 79\n", ""), "1017 1058");
    for (int column = 79; column <= 99; ++column) {
        tabs += " " + std::to_string(column);
    }
    EXPECT_EQ(kinds_that_say(tabs + "\n", ""), "1017 1058");
    EXPECT_EQ(kinds_that_say(tabs + " 100\n", ""), "");
}

TEST(BuilderCapabilities, CountsTheStopsOfARuler)
{
    EXPECT_EQ(kinds_that_say("", "@ruler " + std::string(99, 'T')), "1058");
    EXPECT_EQ(kinds_that_say("", "@ruler " + std::string(100, 'T')), "");
    EXPECT_EQ(kinds_that_say("", "@ruler " + std::string(255, '-')), "1058");
    EXPECT_EQ(kinds_that_say("", "@ruler " + std::string(256, '-')), "");
}

TEST(BuilderCapabilities, CountsTheBytesOfARecord)
{
    std::string bytes = "02";
    for (int i = 0; i < 252; ++i) {
        bytes += " 00";
    }
    EXPECT_EQ(kinds_that_say("record: raw " + bytes + "\n", ""), "1012 1013 1014 1015 1016");
    EXPECT_EQ(kinds_that_say("record: raw " + bytes + " 00\n", ""), "");
}

TEST(BuilderCapabilities, AreReportedWithLineAndRemedy)
{
    EXPECT_EQ(fault_of("kind: 1016\n---\na\nb {sub}2{/sub}\n"),
              "letter:4: subscript cannot be said in IBM Writing Assistant; leave that style out");
    EXPECT_EQ(fault_of("kind: 1015\nmargins: 1 70\n---\n"),
              "letter:2: margins other than 10 and 70 in the header cannot be said in Professional "
              "Write 2; use `record: margins LEFT RIGHT`");
    EXPECT_EQ(
        fault_of("kind: 1012\nheader style: underline\n---\n"),
        "letter:2: a header or footer in underline cannot be said in PFS: WRITE A; leave that "
        "style out");
    EXPECT_EQ(fault_of("kind: 1058\ngeneration: 2\n---\n"),
              "letter:2: generation byte 0x32 does not make a PFS: First Choice 3.0 document; "
              "generation 3 and no other is First Choice 3.0");
}
