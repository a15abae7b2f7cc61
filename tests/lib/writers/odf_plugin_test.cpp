// The formats odt and fodt as programs meet them: through the plug-in, and without it.
#include "tests/lib/writers/written.h"

#include "pfsdoc/reading_stopped.h"
#include "vs_pfs.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <new>
#include <sstream>
#include <string>
#include <string_view>
#include <sys/wait.h>

namespace {

using namespace tests;
using pfsdoc::ErrorKind;
namespace fs = std::filesystem;

class OdfPlugin : public ::testing::Test {
protected:
    void SetUp() override
    {
        std::string name = (fs::temp_directory_path() / "odf-XXXXXX").string();
        ASSERT_NE(::mkdtemp(name.data()), nullptr);
        directory = name;
        look_in(PLUGIN_DIRECTORY);
    }
    void TearDown() override
    {
        ::unsetenv("PFSDOC_PLUGINS");
        fs::remove_all(directory);
    }

    static void look_in(const fs::path &plugins)
    {
        ::setenv("PFSDOC_PLUGINS", plugins.c_str(), 1);
    }
    static pfsdoc::Result<std::unique_ptr<pfsdoc::Writer>>
    make(pfsdoc::Output &output, const pfsdoc::DocumentInfo &info = {})
    {
        return pfsdoc::find_format("fodt")->make_writer(output, info, {});
    }
    // What stands in the way of the plug-in that the folder has.
    std::string refusal(const fs::path &plugins) const
    {
        look_in(plugins);
        pfsdoc::StringOutput output;
        const auto writer = make(output);
        EXPECT_FALSE(writer.ok());
        EXPECT_EQ(output.text, "");
        if (writer.ok()) {
            return {};
        }
        EXPECT_EQ(writer.error().kind, ErrorKind::internal);
        EXPECT_NE(writer.error().remedy, "");
        return writer.error().what;
    }

    fs::path directory;
};

bool contains(std::string_view text, std::string_view part)
{
    return text.find(part) != std::string_view::npos;
}

// What a call to a writer stops the reading with.
template <typename Call> ErrorKind failure_of(Call call)
{
    try {
        call();
    } catch (const pfsdoc::ReadingStopped &stopped) {
        return stopped.error().kind;
    }
    ADD_FAILURE() << "the reading is not stopped";
    return {};
}

TEST_F(OdfPlugin, WritesOneXmlFile)
{
    const std::string text = written("fodt", TypedEvents().line("Dear Sir").end()).text;
    EXPECT_TRUE(text.starts_with("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<office:document "));
    EXPECT_TRUE(contains(text, "<dc:title>LETTER</dc:title>"));
    EXPECT_TRUE(contains(text, "<meta:generator>pfsdoc " PFSDOC_VERSION));
    EXPECT_TRUE(contains(text, ">Dear Sir</text:span></text:p></office:text>"));
    EXPECT_TRUE(text.ends_with("</office:document>\n"));
}

TEST_F(OdfPlugin, WritesAPackage)
{
    const std::string text = written("odt", TypedEvents().line("Dear Sir").end()).text;
    EXPECT_EQ(text.substr(30, 47), "mimetypeapplication/vnd.oasis.opendocument.text");
    for (const std::string_view entry :
         {"META-INF/manifest.xml", "content.xml", "styles.xml", "meta.xml", "settings.xml"}) {
        EXPECT_TRUE(contains(text, entry)) << entry;
    }
}

TEST_F(OdfPlugin, WritesTheSameBytesAgain)
{
    const TypedEvents events = TypedEvents().margins(4, 60).line("a\tb").page_break().line("c");
    EXPECT_EQ(written("odt", events).text, written("odt", events).text);
    EXPECT_EQ(written("fodt", events).text, written("fodt", events).text);
}

TEST_F(OdfPlugin, EscapesTitleAndText)
{
    pfsdoc::StringOutput output;
    const auto writer = make(output, {pfsdoc::DocumentKind::write_a, "<a> & \"b\""});
    ASSERT_TRUE(writer.ok());
    pfsdoc::reading::ParagraphCollector collector(*writer.value());
    TypedEvents().line("</text:p><x/>&").end().tell(collector);
    EXPECT_TRUE(contains(output.text, "<dc:title>&lt;a&gt; &amp; &quot;b&quot;</dc:title>"));
    EXPECT_TRUE(contains(output.text, ">&lt;/text:p&gt;&lt;x/&gt;&amp;<"));
}

TEST_F(OdfPlugin, HandsItsLossesOver)
{
    const Written result =
        written("odt", TypedEvents().text("a").special("*JOIN NOTES*").paragraph().end());
    ASSERT_EQ(result.losses.size(), 1U);
    EXPECT_EQ(result.losses[0].loss, pfsdoc::Loss::command);
}

// Four million tabs would take a gigabyte; nothing of them is written.
TEST_F(OdfPlugin, RefusesWhatTakesTooMuchMemory)
{
    pfsdoc::StringOutput output;
    const auto writer = make(output);
    ASSERT_TRUE(writer.ok());
    pfsdoc::Paragraph tabs;
    tabs.bytes.assign(4'100'000, '\t');
    tabs.pieces.push_back({0, 0, 0, pfsdoc::PieceKind::text, false});
    EXPECT_EQ(failure_of([&] { writer.value()->paragraph(tabs); }), ErrorKind::limit);
    EXPECT_EQ(failure_of([&] { writer.value()->end_of_document(); }), ErrorKind::limit);
    EXPECT_EQ(output.text, "");
}

// An exception of the output's must not reach the plug-in's code.
TEST_F(OdfPlugin, RemembersAnOutputThatFails)
{
    struct Full final : pfsdoc::Output {
        void write(std::string_view) override
        {
            throw std::bad_alloc();
        }
    } output;
    const auto writer = make(output);
    ASSERT_TRUE(writer.ok());
    EXPECT_EQ(failure_of([&] { writer.value()->end_of_document(); }), ErrorKind::limit);
}

TEST_F(OdfPlugin, CanBeLeftBeforeTheEnd)
{
    pfsdoc::StringOutput output;
    {
        const auto writer = make(output);
        ASSERT_TRUE(writer.ok());
        writer.value()->block_begin(pfsdoc::BlockKind::header);
        writer.value()->paragraph({});
    }
    EXPECT_EQ(output.text, "");
}

TEST_F(OdfPlugin, IsMissedWithWords)
{
    EXPECT_EQ(refusal(directory),
              "the plug-in for OpenDocument is not installed: there is no pfsdoc_odf.so");
}

TEST_F(OdfPlugin, IsRefusedOfAnotherBuild)
{
    EXPECT_TRUE(refusal(OTHER_PLUGIN_DIRECTORY)
                    .ends_with("pfsdoc_odf.so belongs to another build of this program"));
}

TEST_F(OdfPlugin, IsRefusedWhereItIsNone)
{
    std::ofstream(directory / "pfsdoc_odf.so") << "no library";
    EXPECT_TRUE(refusal(directory).starts_with("the plug-in for OpenDocument cannot be loaded: "));
}

TEST_F(OdfPlugin, IsRefusedWithoutItsFunction)
{
    fs::create_symlink(VS_PFS_MODULE_FILE, directory / "pfsdoc_odf.so");
    EXPECT_TRUE(refusal(directory).ends_with(
        "pfsdoc_odf.so is no such plug-in: it has no pfsdoc_odf_plugin"));
}

// ---------------------------------------------------------------------- the command -----

class OdfCommand : public OdfPlugin {
protected:
    void SetUp() override
    {
        OdfPlugin::SetUp();
        ::unsetenv("PFSDOC_PLUGINS");
    }

    struct Outcome {
        int exit_code;
        std::string said; // on both streams
    };
    // In the test's own folder.
    Outcome run(const std::string &arguments) const
    {
        const std::string command = "cd '" + directory.string() + "' && '" PFSDOC_PROGRAM "' " +
                                    arguments + " 2>&1 </dev/null";
        std::FILE *pipe = ::popen(command.c_str(), "r");
        EXPECT_NE(pipe, nullptr);
        std::string said;
        for (int byte = std::getc(pipe); byte != EOF; byte = std::getc(pipe)) {
            said.push_back(static_cast<char>(byte));
        }
        return {WEXITSTATUS(::pclose(pipe)), said};
    }
    std::string content(const std::string &name) const
    {
        std::ostringstream text;
        text << std::ifstream(directory / name, std::ios::binary).rdbuf();
        return text.str();
    }
    bool is_empty() const
    {
        return fs::is_empty(directory);
    }

    const std::string letter = std::string(SAMPLES_DIRECTORY) + "/1012-pfs-write-a/letter.doc";
};

TEST_F(OdfCommand, FindsThePluginBesideItself)
{
    const Outcome outcome = run("convert '" + letter + "' -o letter.odt");
    EXPECT_EQ(outcome.exit_code, 0);
    EXPECT_EQ(outcome.said, "");
    EXPECT_TRUE(content("letter.odt").starts_with("PK"));
}

TEST_F(OdfCommand, WritesToStandardOutput)
{
    const Outcome outcome = run("convert -t fodt '" + letter + "'");
    EXPECT_EQ(outcome.exit_code, 0);
    EXPECT_TRUE(contains(outcome.said, "<dc:title>letter.doc</dc:title>"));
}

TEST_F(OdfCommand, HonoursItsOptions)
{
    EXPECT_TRUE(contains(run("convert -t fodt '" + letter + "'").said, "Harbour Office ·"));
    EXPECT_FALSE(
        contains(run("convert -t fodt --no-headers '" + letter + "'").said, "Harbour Office ·"));
    EXPECT_EQ(run("convert -t odt --wrap 7 '" + letter + "'").exit_code, 2);
}

TEST_F(OdfCommand, MakesNoFileWithoutThePlugin)
{
    look_in(directory);
    const Outcome outcome = run("convert '" + letter + "' -o letter.odt");
    EXPECT_EQ(outcome.exit_code, 70);
    EXPECT_EQ(outcome.said,
              "pfsdoc: " + letter +
                  ": the plug-in for OpenDocument is not installed: there is no pfsdoc_odf.so; "
                  "install the plug-in that came with this program, or name its folder with the "
                  "environment variable PFSDOC_PLUGINS\n");
    EXPECT_TRUE(is_empty());
}

TEST_F(OdfCommand, LeavesAFileThatIsThereAloneWithoutThePlugin)
{
    std::ofstream(directory / "letter.odt") << "before";
    look_in(OTHER_PLUGIN_DIRECTORY);
    EXPECT_EQ(run("convert '" + letter + "' -o letter.odt").exit_code, 70);
    EXPECT_EQ(content("letter.odt"), "before");
}

TEST_F(OdfCommand, MakesNoFileOfADocumentThatIsTooLarge)
{
    const fs::path source = directory / "source";
    fs::create_directory(source);
    std::ifstream sample(letter, std::ios::binary);
    std::ostringstream bytes;
    bytes << sample.rdbuf();
    std::string document = bytes.str();
    document.insert(document.rfind('\x0E'), std::string(4'100'000, '\t'));
    std::ofstream(source / "tabs.doc", std::ios::binary) << document;
    const Outcome outcome = run("convert source/tabs.doc -o tabs.odt");
    EXPECT_EQ(outcome.exit_code, 6);
    EXPECT_TRUE(contains(outcome.said, "is too large to be written as OpenDocument"));
    EXPECT_FALSE(fs::exists(directory / "tabs.odt"));
}

} // namespace
