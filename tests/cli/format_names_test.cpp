// Names of formats as people type them.
#include "cli/format_names.h"

#include <gtest/gtest.h>

namespace {

using namespace pfsdoc;
using namespace pfsdoc::cli;

TEST(FormatNames, AreTakenInEveryForm)
{
    struct Expectation {
        const char *typed;
        const char *format;
    };
    for (const auto &[typed, format] :
         {Expectation{"text", "text"}, Expectation{"TEXT", "text"}, Expectation{"txt", "text"},
          Expectation{"md", "markdown"}, Expectation{"Markdown", "markdown"},
          Expectation{"htm", "html"}, Expectation{"HTM", "html"}, Expectation{"fodt", "fodt"},
          Expectation{"json", "json"}, Expectation{"ast.json", "pandoc"}}) {
        const Result<const Format *> named = format_named(typed);
        ASSERT_TRUE(named.ok()) << typed;
        EXPECT_EQ(named.value()->name, format) << typed;
    }
    for (const Format *format : formats()) {
        EXPECT_EQ(format_named(format->name).value(), format);
    }
}

TEST(FormatNames, SelectTheFormatOfAFile)
{
    struct Expectation {
        const char *file;
        const char *format; // null for none
    };
    for (const auto &[file, format] :
         {Expectation{"letter.txt", "text"}, Expectation{"a.b/LETTER.HTM", "html"},
          Expectation{"x.HTML", "html"}, Expectation{"letter.1.md", "markdown"},
          Expectation{"letter.ast.json", "pandoc"}, Expectation{"letter.json", "json"},
          Expectation{"letter", nullptr}, Expectation{"a.txt/letter", nullptr},
          Expectation{"text", nullptr}, Expectation{"letter.txt.doc", nullptr},
          Expectation{"letter.", nullptr}, Expectation{"", nullptr}}) {
        const Format *found = format_of_file(file);
        EXPECT_EQ(found == nullptr ? "" : found->name, format == nullptr ? "" : format) << file;
    }
}

TEST(FormatNames, ShowTheWayToFormatsThatAreNotWritten)
{
    struct Expectation {
        const char *typed;
        const char *way;
    };
    for (const auto &[typed, way] :
         {Expectation{"docx", "convert to odt, open that in a word processor"},
          Expectation{"DOC", "convert to odt, open that in a word processor"},
          Expectation{"pdf", "convert to odt or html, open that, and print it"},
          Expectation{"epub", "convert to pandoc"}, Expectation{"htlm", "did you mean html?"},
          Expectation{"wordstar", "see pfsdoc convert --help"}, Expectation{"", "see pfsdoc"}}) {
        const Result<const Format *> named = format_named(typed);
        ASSERT_FALSE(named.ok()) << typed;
        EXPECT_EQ(named.error().kind, ErrorKind::usage);
        EXPECT_EQ(named.error().what, "there is no output format \"" + std::string(typed) + "\"");
        EXPECT_TRUE(named.error().remedy.starts_with(way)) << named.error().remedy;
    }
}

} // namespace
