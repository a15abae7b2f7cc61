// The command pfsdoc as a program, checked by its exit code and its output.
#include "lib/base/escaped_name.h"
#include "lib/base/json_text.h"
#include "pfsdoc/examine.h"
#include "pfsdoc/explain.h"
#include "tests/command/command_fixture.h"

#include <functional>
#include <random>
#include <sys/ioctl.h>
#include <sys/resource.h>
#include <thread>

namespace {

using namespace tests;
using pfsdoc::DocumentKind;

std::string json_string(const std::string &text)
{
    std::string json;
    pfsdoc::base::append_json_string(json, text);
    return json;
}

// No signature can be in it by chance: the sequence is fixed.
std::string random_bytes(std::size_t size)
{
    std::mt19937 random(7);
    std::string bytes;
    while (bytes.size() < size) {
        bytes.push_back(static_cast<char>(random()));
    }
    return bytes;
}

TEST_F(Command, HelpAndVersionSucceed)
{
    EXPECT_EQ(output_of({"--version"}), "pfsdoc " PFSDOC_VERSION "\n");
    for (const std::vector<std::string> &arguments :
         std::vector<std::vector<std::string>>{{"--help"},
                                               {"identify", "--help"},
                                               {"text", "--help"},
                                               {"trace", "-h"},
                                               {"explain", "-h"}}) {
        const std::string help = output_of(arguments);
        EXPECT_NE(help.find("Usage: pfsdoc"), std::string::npos);
        EXPECT_NE(help.find("Example"), std::string::npos);
    }
}

TEST_F(Command, UsageErrorsAreTwo)
{
    expect_failure(run({"frobnicate"}), 2, "pfsdoc: there is no command and no file frobnicate; ");
    expect_failure(run({"text"}), 2, "pfsdoc: FILE is required");
    expect_failure(run({"identify"}), 2, "pfsdoc: FILE is required");
    expect_failure(run({"trace", "a.pfs", "b.pfs"}), 2, "pfsdoc: ");
    expect_failure(run({"text", "--fold", "a.pfs"}), 2, "pfsdoc: ");
    expect_failure(run({"trace", "a.pfs", "-o"}), 2, "pfsdoc: ");
}

TEST_F(Command, ShowsWhatItDoesWhenNothingIsAsked)
{
    const Outcome outcome = run({});
    EXPECT_EQ(outcome.exit_code, 2);
    EXPECT_EQ(outcome.output, "");
    EXPECT_NE(outcome.errors.find("pfsdoc LETTER "), std::string::npos) << outcome.errors;
    EXPECT_NE(outcome.errors.find("pfsdoc help "), std::string::npos) << outcome.errors;
    EXPECT_LE(std::count(outcome.errors.begin(), outcome.errors.end(), '\n'), 10);
}

TEST_F(Command, ShowsALetterWithoutASubcommand)
{
    const std::string text = output_of({"text", "a.pfs"});
    EXPECT_EQ(output_of({"a.pfs"}), text);
    EXPECT_EQ(output_of({"./a.pfs", "--wrap", "6"}), output_of({"text", "a.pfs", "--wrap", "6"}));
    EXPECT_EQ(output_of({"-"}, {.input = "a.pfs"}), text);
    EXPECT_EQ(output_of({"a.pfs", "a.pfs"}), output_of({"text", "a.pfs", "a.pfs"}));
    EXPECT_EQ(output_of({"a.pfs", "-t", "html"}), output_of({"convert", "-t", "html", "a.pfs"}));
    EXPECT_EQ(output_of({"a.pfs", "-o", "new.html"}), "");
    EXPECT_EQ(content_of(directory / "new.html"), output_of({"a.pfs", "--to=html"}));
    EXPECT_EQ(output_of({"-t", "html", "a.pfs"}), output_of({"a.pfs", "-t", "html"}));
    EXPECT_EQ(output_of({"--wrap", "6", "a.pfs"}), output_of({"text", "a.pfs", "--wrap", "6"}));
    expect_failure(run({"--none"}), 2, "pfsdoc: FILE is required");
    expect_failure(run({"none.pfs"}), 3, "pfsdoc: none.pfs: cannot be read");
    expect_failure(run({"."}), 3, "pfsdoc: .: is a directory");
    write("identify", content_of(directory / "a.pfs"));
    expect_failure(run({"identify"}), 2, "pfsdoc: FILE is required");
    EXPECT_EQ(output_of({"./identify"}), text);
}

TEST_F(Command, HasHelpAsAWord)
{
    EXPECT_EQ(output_of({"help"}), output_of({"--help"}));
    for (const char *command : {"identify", "text", "convert", "explain", "trace"}) {
        EXPECT_EQ(output_of({"help", command}), output_of({command, "--help"})) << command;
    }
    expect_failure(run({"help", "convrt"}), 2,
                   "pfsdoc: there is no command and no file convrt; did you mean convert?");
}

TEST_F(Command, AsksWhatAMistypedWordMeans)
{
    expect_failure(run({"identif", "a.pfs"}), 2,
                   "pfsdoc: there is no command and no file identif; did you mean identify?");
    expect_failure(run({"text", "a.pfs", "--no-header"}), 2,
                   "pfsdoc: The following argument was not expected: --no-header; did you mean "
                   "--no-headers?");
    expect_failure(run({"text", "a.pfs", "--warp=60"}), 2,
                   "pfsdoc: The following argument was not expected: --warp=60; did you mean "
                   "--wrap?");
    expect_failure(run({"convert", "-t", "htlm", "a.pfs"}), 2,
                   "pfsdoc: there is no output format \"htlm\"; did you mean html?");
}

TEST_F(Command, FitsItsHelpIntoATerminal)
{
    for (const std::vector<std::string> &arguments :
         std::vector<std::vector<std::string>>{{"--help"},
                                               {"identify", "--help"},
                                               {"text", "--help"},
                                               {"convert", "--help"},
                                               {"explain", "--help"},
                                               {"trace", "--help"}}) {
        std::istringstream lines(output_of(arguments));
        for (std::string line; std::getline(lines, line);) {
            EXPECT_LE(line.size(), 80U) << arguments.front() << ": " << line;
        }
    }
    std::istringstream lines(run({}).errors);
    for (std::string line; std::getline(lines, line);) {
        EXPECT_LE(line.size(), 80U) << line;
    }
}

// The options as a help text lists them, long and short: "  -o,--output FILE   write to ...".
std::vector<std::string> options_in(const std::string &help)
{
    std::vector<std::string> options;
    std::istringstream lines(help);
    for (std::string line; std::getline(lines, line);) {
        if (line.starts_with("  -")) {
            std::istringstream names(line.substr(2, line.find(' ', 2) - 2));
            for (std::string name; std::getline(names, name, ',');) {
                options.push_back(name);
            }
        }
    }
    return options;
}

// Options are set up only where the arguments may name them.
TEST_F(Command, KnowsEveryOptionOfItsHelp)
{
    struct Expectation {
        const char *command;
        std::vector<std::string> some;
    };
    for (const auto &[command, some] :
         {Expectation{"identify", {"-h", "--json", "--lines"}},
          Expectation{"text", {"-o", "--output", "--max-output", "--wrap", "--charset"}},
          Expectation{"convert", {"-t", "--to", "--no-headers", "--fold", "--report"}},
          Expectation{"explain", {"--color", "--module", "--json", "-o"}},
          Expectation{"trace", {"--stop", "--offsets", "--help"}}}) {
        const std::vector<std::string> options = options_in(output_of({command, "--help"}));
        for (const std::string &option : some) {
            EXPECT_EQ(std::count(options.begin(), options.end(), option), 1) << option;
        }
        for (const std::string &option : options) {
            const Outcome outcome = run({command, option});
            EXPECT_EQ(outcome.errors.find("not expected"), std::string::npos)
                << command << ": " << outcome.errors;
        }
        expect_failure(run({command, "--none"}), 2, "pfsdoc: FILE is required");
        expect_failure(run({command, "a.pfs", "--none"}), 2,
                       "pfsdoc: The following argument was not expected: --none");
    }
}

TEST_F(Command, TakesOutputAndFormatInEveryForm)
{
    const std::string page = output_of({"convert", "-t", "html", "a.pfs"});
    for (const std::vector<std::string> &arguments : std::vector<std::vector<std::string>>{
             {"convert", "-thtml", "a.pfs", "-o", "page"},
             {"convert", "a.pfs", "--to", "html", "-opage"},
             {"convert", "--to=html", "--output=page", "a.pfs"},
             {"convert", "a.pfs", "--output", "page", "--no-headers", "-thtml"}}) {
        fs::remove(directory / "page");
        const Outcome outcome = run(arguments);
        EXPECT_EQ(outcome.errors, "");
        EXPECT_EQ(content_of(directory / "page"), page);
    }
    expect_failure(run({"text", "-t", "html", "a.pfs"}), 2, "pfsdoc: The following arg");
    expect_failure(run({"identify", "-o", "page", "a.pfs"}), 2, "pfsdoc: The following arg");
}

TEST_F(Command, IsChosenByTheFirstWord)
{
    expect_failure(run({"text", "identify"}), 3, "pfsdoc: identify: cannot be read");
    expect_failure(run({"trace", "a.pfs", "convert"}), 2, "pfsdoc: The following argument");
    EXPECT_EQ(output_of({"--", "text", "a.pfs"}), output_of({"text", "a.pfs"}));
    EXPECT_EQ(output_of({"--help", "convert"}), output_of({"convert", "--help"}));
    expect_failure(run({"--none", "text", "a.pfs"}), 2, "pfsdoc: The following argument");
    expect_failure(run({"-t", "html", "convert", "a.pfs"}), 2, "pfsdoc: ");
}

TEST_F(Command, IdentifyAnswersInOneShortLine)
{
    EXPECT_EQ(output_of({"identify", "a.pfs"}), "a.pfs: PFS: WRITE B\n");
    write("LETTER", write_document("WRD PC", '1', bytes("0D 0E")));
    write("cut.txt", write_document(3, bytes("'cut'")));
    write("README.TXT", "plain text");
    write("graph", blank_document(512, {{9, "RABBITGRAPH"}}));
    write("empty", "");
    EXPECT_EQ(output_of({"identify", "LETTER", "cut.txt", "README.TXT", "graph", "empty"}),
              "LETTER: PFS: WRITE A\n"
              "cut.txt: IBM Writing Assistant, likely\n"
              "README.TXT: not a supported document\n"
              "graph: a First Choice graph (\"RABBITGRAPH\" at 9), not a document\n"
              "empty: empty\n");
}

TEST_F(Command, IdentifySaysWhyOnRequest)
{
    EXPECT_EQ(output_of({"identify", "-v", "a.pfs"}),
              "a.pfs: PFS: WRITE B, file id 1013, certain, fmt/1414: \"TYPE 2\" at 641, variant "
              "\"2\" at 649; it lacks the signature that PRONOM has for fmt/1414\n");
    write("note.txt", write_document(3, bytes("'cut'")));
    EXPECT_EQ(output_of({"identify", "--verbose", "note.txt"}),
              "note.txt: IBM Writing Assistant, file id 1016, likely: \"IBM   \" at 641; its last "
              "byte is not an end mark: it is truncated, or other bytes follow its end; its "
              "extension "
              ".txt is usual for plain text\n");
    for (const KindExample &example : kind_examples()) {
        write("any", document_of(example.kind, bytes(example.body)));
        const std::string line = output_of({"identify", "-v", "any"});
        EXPECT_NE(line.find(display_name(example.kind)), std::string::npos) << line;
        EXPECT_NE(line.find(", certain"), std::string::npos) << line;
    }
}

TEST_F(Command, IdentifyGoesOnAfterAFailure)
{
    write("b.pfs", write_document(4, bytes("0E")));
    const Outcome outcome = run({"identify", "a.pfs", "none", ".", "b.pfs"});
    EXPECT_EQ(outcome.exit_code, 1);
    EXPECT_EQ(outcome.output, "a.pfs: PFS: WRITE B\nb.pfs: Professional Write 1\n");
    EXPECT_NE(outcome.errors.find("pfsdoc: none: cannot be read"), std::string::npos);
    EXPECT_NE(outcome.errors.find("pfsdoc: .: is a directory"), std::string::npos);
}

// What is no document is an answer: among many files it must not look like a failure.
TEST_F(Command, IdentifyFailsForWhatCannotBeRead)
{
    write("empty", "");
    EXPECT_EQ(run({"identify", "none"}).exit_code, 3);
    EXPECT_EQ(run({"identify", "empty"}).exit_code, 4);
    EXPECT_EQ(run({"identify", "empty"}).errors, "");
    EXPECT_EQ(run({"identify", "none", "empty"}).exit_code, 1);
    EXPECT_EQ(output_of({"identify", "a.pfs", "empty"}), "a.pfs: PFS: WRITE B\nempty: empty\n");
    EXPECT_EQ(run({"identify", "a.pfs", "a.pfs"}).exit_code, 0);
}

// As xargs calls it: the last time with whatever is left, be it one file.
TEST_F(Command, IdentifyWritesEachFileOnceForPrograms)
{
    write("junk", "junk");
    const std::string object =
        R"({"source":"junk","error":"is not a supported document","remedy":"only documents of )"
        R"(PFS: WRITE, Professional Write, IBM Writing Assistant and PFS: First Choice can be )"
        R"(read","exit_code":4})";
    EXPECT_EQ(output_of({"identify", "--lines", "junk"}), object + "\n");
    EXPECT_EQ(output_of({"identify", "--lines", "junk", "junk"}), object + "\n" + object + "\n");
    EXPECT_EQ(output_of({"identify", "--json", "junk"}), "[\n  " + object + "\n]\n");
    EXPECT_EQ(run({"identify", "--lines", "none"}).exit_code, 3);
}

// Any bytes are a name, and what identify writes leads back to them.
TEST_F(Command, IdentifyWritesNamesThatTurnBack)
{
    for (const std::string name : {"caf\x82.pfs", "caf\\x82.pfs",
                                   "\xE2\x80\xAE"
                                   "txt.pfs"}) {
        write(name, content_of(directory / "a.pfs"));
        const std::string escaped = pfsdoc::base::escaped_name(name);
        EXPECT_EQ(output_of({"identify", name}), escaped + ": PFS: WRITE B\n");
        const std::string line = output_of({"identify", "--lines", name});
        const std::string beginning = "{\"source\":" + json_string(escaped) + ",";
        EXPECT_EQ(line.substr(0, beginning.size()), beginning);
        EXPECT_EQ(pfsdoc::base::unescaped_name(escaped), name);
    }
}

constexpr const char *a_pfs_as_json =
    R"({"source":"a.pfs","kind":"PFS: WRITE B","file_id":1013,"confidence":"certain",)"
    R"("basis":"\"TYPE 2\" at 641, variant \"2\" at 649","puid":"fmt/1414",)"
    R"("pronom_signature":false,"extension_mismatch":null,)"
    R"("notes":["it lacks the signature that PRONOM has for fmt/1414"]})";
constexpr const char *none_as_json =
    R"({"source":"none","error":"cannot be read: No such file or directory",)"
    R"("remedy":"check the name","exit_code":3})";

TEST_F(Command, IdentifyWritesAnArrayOfObjects)
{
    EXPECT_EQ(output_of({"identify", "--json", "a.pfs"}),
              std::string("[\n  ") + a_pfs_as_json + "\n]\n");
    const Outcome outcome = run({"identify", "--json", "none", "a.pfs"});
    EXPECT_EQ(outcome.exit_code, 1);
    EXPECT_EQ(outcome.output,
              std::string("[\n  ") + none_as_json + ",\n  " + a_pfs_as_json + "\n]\n");
    EXPECT_NE(outcome.errors.find("pfsdoc: none: cannot be read"), std::string::npos);
}

TEST_F(Command, IdentifyWritesObjectsOneALine)
{
    write("wa.pw", write_document(3, bytes("0D 0E")));
    const Outcome outcome = run({"identify", "--lines", "a.pfs", "none", "wa.pw"});
    EXPECT_EQ(outcome.exit_code, 1);
    EXPECT_EQ(outcome.output, std::string(a_pfs_as_json) + "\n" + none_as_json + "\n" +
                                  R"({"source":"wa.pw","kind":"IBM Writing Assistant",)"
                                  R"("file_id":1016,"confidence":"certain",)"
                                  R"("basis":"\"IBM   \" at 641","puid":null,)"
                                  R"("pronom_signature":null,"extension_mismatch":)"
                                  R"("its extension .pw is usual for Professional Write",)"
                                  R"("notes":[]})"
                                  "\n");
    expect_failure(run({"identify", "--json", "--lines", "a.pfs"}), 2, "pfsdoc: ");
}

TEST_F(Command, ExplainHasEveryByteOfTheFile)
{
    const std::string dump = output_of({"explain", "a.pfs"});
    EXPECT_EQ(dump.substr(0, dump.find('\n')),
              "       0  00 00 00 00 00 00 00 00  |        |  not used");
    EXPECT_NE(dump.find("|*NEW PAG|  command: new page\n"), std::string::npos) << dump;
    const std::string document = content_of(directory / "a.pfs");
    std::size_t offset = 0;
    std::istringstream lines(output_of({"explain", "--json", "a.pfs"}));
    for (std::string line; std::getline(lines, line);) {
        const std::string beginning = R"({"offset":)" + std::to_string(offset) + R"(,"length":)";
        ASSERT_EQ(line.substr(0, beginning.size()), beginning);
        offset += std::stoul(line.substr(beginning.size()));
    }
    EXPECT_EQ(offset, document.size());
}

TEST_F(Command, ExplainHasColoursOnlyOnRequest)
{
    EXPECT_EQ(output_of({"explain", "a.pfs"}).find('\x1B'), std::string::npos);
    EXPECT_EQ(output_of({"explain", "--color=never", "a.pfs"}),
              output_of({"explain", "--color", "auto", "a.pfs"}));
    EXPECT_NE(output_of({"explain", "--color=always", "a.pfs"}).find('\x1B'), std::string::npos);
    EXPECT_EQ(output_of({"explain", "--color=always", "--json", "a.pfs"}),
              output_of({"explain", "--json", "a.pfs"}));
    expect_failure(run({"explain", "--color=red", "a.pfs"}), 2, "pfsdoc: --color");
}

TEST_F(Command, ExplainFitsTheWindow)
{
    const auto longest_line = [this] {
        std::size_t longest = 0;
        std::istringstream lines(output_of({"explain", "--charset", "850", "a.pfs"}));
        for (std::string line; std::getline(lines, line);) {
            longest = std::max(longest, static_cast<std::size_t>(std::count_if(
                                            line.begin(), line.end(), [](unsigned char byte) {
                                                return (byte & 0xC0U) != 0x80U;
                                            })));
        }
        return longest;
    };
    ::unsetenv("COLUMNS");
    EXPECT_LE(longest_line(), 80U);
    ::setenv("COLUMNS", "200", 1);
    EXPECT_GT(longest_line(), 110U);
    for (const char *senseless : {"", "wide", "0", "-5", "80x"}) {
        ::setenv("COLUMNS", senseless, 1);
        EXPECT_LE(longest_line(), 80U) << senseless;
    }
    ::unsetenv("COLUMNS");
}

// What a terminal of so many columns gets.
std::string shown_on_terminal(unsigned short columns,
                              const std::function<void(const Streams &)> &run)
{
    const int terminal = ::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
    EXPECT_TRUE(terminal >= 0 && ::grantpt(terminal) == 0 && ::unlockpt(terminal) == 0);
    const winsize size{24, columns, 0, 0};
    EXPECT_EQ(::ioctl(terminal, TIOCSWINSZ, &size), 0);
    const std::string name = ::ptsname(terminal);
    const int other_end = ::open(name.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);
    std::string shown;
    std::thread reader([terminal, &shown] {
        std::array<char, 4096> bytes{};
        for (ssize_t count = 0; (count = ::read(terminal, bytes.data(), bytes.size())) > 0;) {
            shown.append(bytes.data(), static_cast<std::size_t>(count));
        }
    });
    run({.output = name});
    ::close(other_end);
    reader.join();
    ::close(terminal);
    return shown;
}

TEST_F(Command, ExplainAsksTheTerminal)
{
    const auto explained = [this](unsigned short columns) {
        return shown_on_terminal(columns, [this](const Streams &streams) {
            EXPECT_EQ(run({"explain", "a.pfs"}, streams).exit_code, 0);
        });
    };
    EXPECT_NE(explained(80).find("  00 00 00 00 00 00 00 00  |        |  \x1B[2mnot used\x1B[0m"),
              std::string::npos);
    EXPECT_NE(explained(120).find("00 00 00 00 00 00 00 00 00 00 "), std::string::npos);
}

TEST_F(Command, ExplainTakesItsColoursFromTheEnvironment)
{
    ::setenv("CLICOLOR_FORCE", "1", 1);
    EXPECT_EQ(output_of({"explain", "a.pfs"}), output_of({"explain", "--color=always", "a.pfs"}));
    ::setenv("NO_COLOR", "1", 1);
    EXPECT_EQ(output_of({"explain", "a.pfs"}).find('\x1B'), std::string::npos);
    ::unsetenv("NO_COLOR");
    ::setenv("CLICOLOR_FORCE", "0", 1);
    EXPECT_EQ(output_of({"explain", "a.pfs"}).find('\x1B'), std::string::npos);
    ::unsetenv("CLICOLOR_FORCE");
}

TEST_F(Command, ExplainStopsAtTheLargestOutputAllowed)
{
    expect_failure(run({"explain", "--max-output", "1000", "a.pfs", "-o", "new"}), 6,
                   "pfsdoc: a.pfs: ");
    EXPECT_FALSE(fs::exists(directory / "new"));
    EXPECT_EQ(run({"explain", "--max-output", "1MB", "a.pfs", "-o", "new"}).exit_code, 0);
    EXPECT_EQ(content_of(directory / "new"), output_of({"explain", "a.pfs"}));
}

TEST_F(Command, ExplainReadsTheGivenCharacterSet)
{
    write("c", choice_document('3', bytes("00 9B 08 0D 0E")));
    EXPECT_NE(output_of({"explain", "c"}).find("|\u00A2|"), std::string::npos);
    EXPECT_NE(output_of({"explain", "--charset", "850", "c"}).find("|\u00F8|"), std::string::npos);
    expect_failure(run({"explain", "--charset", "none", "c"}), 2, "pfsdoc: ");
}

TEST_F(Command, TraceIsTheEventStream)
{
    const std::string trace = output_of({"trace", "--fold", "a.pfs"});
    EXPECT_EQ(trace, "section 0\n"
                     "tabs\n"
                     "tabs end\n"
                     "attribute 2 bold off\n"
                     "attribute 4 underline off\n"
                     "attribute 3 italic off\n"
                     "attribute 11 superscript off\n"
                     "attribute 10 subscript off\n"
                     "margins 0 9216\n"
                     "indents 0 0 0\n"
                     "alignment left\n"
                     "font 24\n"
                     "spacing 240\n"
                     "text \"Hello\"\n"
                     "indents 288 0 288\n"
                     "break paragraph\n"
                     "indents 0 0 0\n"
                     "text \"more \"\n"
                     "page-break\n"
                     "special \"*NEW PAGE*\"\n"
                     "break paragraph\n"
                     "text \"last\"\n"
                     "break paragraph\n"
                     "break end\n");
}

TEST_F(Command, TraceIsTheSameWithStops)
{
    for (const KindExample &example : kind_examples()) {
        write("any", document_of(example.kind, bytes(example.body),
                                 {header_line(example.kind, 0, "head"),
                                  header_line(example.kind, 3, "foot")}));
        const std::string trace = output_of({"trace", "--offsets", "any"});
        EXPECT_NE(trace.find("break end"), std::string::npos);
        EXPECT_EQ(output_of({"trace", "--offsets", "--stop", "any"}), trace);
    }
}

TEST_F(Command, TraceShowsOffsetsWhenAsked)
{
    const std::string trace = output_of({"trace", "--offsets", "a.pfs"});
    EXPECT_EQ(trace.substr(0, trace.find('\n')), "    1025 section 0");
    EXPECT_NE(trace.find("\n    1029 char 48 H\n"), std::string::npos);
}

TEST_F(Command, TextIsTheDocument)
{
    const std::string text = output_of({"text", "a.pfs"});
    EXPECT_NE(text.find("  Hello\n"), std::string::npos);
    EXPECT_NE(text.find('\f'), std::string::npos);
    EXPECT_EQ(text.find("NEW PAGE"), std::string::npos);
}

TEST_F(Command, TextLeavesPageBreaksOutWhenAsked)
{
    const std::string text = output_of({"text", "--no-page-breaks", "a.pfs"});
    EXPECT_EQ(text.find('\f'), std::string::npos);
    EXPECT_NE(text.find("last"), std::string::npos);
}

TEST_F(Command, TextShowsCommandsWhenAsked)
{
    EXPECT_NE(output_of({"text", "--commands", "a.pfs"}).find("*NEW PAGE*"), std::string::npos);
}

TEST_F(Command, DashIsStandardInput)
{
    const Streams from_file = {.input = "a.pfs"};
    EXPECT_EQ(output_of({"text", "-"}, from_file), output_of({"text", "a.pfs"}));
    EXPECT_EQ(output_of({"trace", "-"}, from_file), output_of({"trace", "a.pfs"}));
    EXPECT_EQ(output_of({"identify", "-"}, from_file), "-: PFS: WRITE B\n");
}

TEST_F(Command, UnreadableInputsAreThree)
{
    expect_failure(run({"text", "none"}), 3, "pfsdoc: none: cannot be read: No such file");
    expect_failure(run({"text", "."}), 3, "pfsdoc: .: is a directory; ");
    expect_failure(run({"text", ""}), 3, "pfsdoc: \"\": cannot be read");
    expect_failure(run({"text", "-"}, {.input = ""}), 3, "pfsdoc: -: cannot be read");
    expect_failure(run({"text", "-"}, {.input = "."}), 3, "pfsdoc: -: is a directory");
}

TEST_F(Command, UnknownDocumentsAreFour)
{
    write("empty", "");
    write("random", random_bytes(5000));
    for (const char *subcommand : {"text", "trace", "explain"}) {
        expect_failure(run({subcommand, "empty"}), 4, "pfsdoc: empty: is empty; ");
        expect_failure(run({subcommand, "random"}), 4,
                       "pfsdoc: random: is not a supported document");
    }
}

// Every document ends with an end byte; what follows it does not matter.
TEST_F(Command, TruncatedDocumentsExitWithFiveAndAreWrittenAsFarAsTheyGo)
{
    for (const KindExample &example : kind_examples()) {
        const std::string whole = document_of(example.kind, bytes(example.body));
        write("whole", whole);
        write("padded", whole + "\x1A\x1A");
        write("cut", whole.substr(0, whole.rfind('\x0E')));
        for (const char *subcommand : {"text", "trace"}) {
            const std::string expected = output_of({subcommand, "whole"});
            EXPECT_EQ(output_of({subcommand, "padded"}), expected);
            const Outcome outcome = run({subcommand, "cut"});
            expect_failure(outcome, 5, "pfsdoc: cut: is truncated: the ");
            EXPECT_EQ(outcome.output, expected);
            expect_failure(run({subcommand, "cut", "-o", "out"}), 5, "pfsdoc: cut: is truncated");
            EXPECT_EQ(content_of(directory / "out"), expected);
        }
        const Outcome explained = run({"explain", "cut"});
        expect_failure(explained, 5, "pfsdoc: cut: is truncated: the ");
        EXPECT_TRUE(output_of({"explain", "whole"}).starts_with(explained.output));
        expect_failure(run({"trace", "--stop", "cut"}), 5, "pfsdoc: cut: is truncated: the ");
    }
}

TEST_F(Command, OutputThatCannotBeWrittenIsSeven)
{
    const Streams full = {.output = "/dev/full"};
    expect_failure(run({"text", "a.pfs"}, full), 7, "pfsdoc: a.pfs: the output cannot be written");
    expect_failure(run({"trace", "a.pfs"}, full), 7, "pfsdoc: a.pfs: the output cannot");
    expect_failure(run({"explain", "a.pfs"}, full), 7, "pfsdoc: a.pfs: the output cannot");
    expect_failure(run({"identify", "a.pfs"}, full), 7, "pfsdoc: the output cannot be written");
    expect_failure(run({"--help"}, full), 7, "pfsdoc: the output cannot be written");
    expect_failure(run({"--version"}, full), 7, "pfsdoc: the output cannot be written");
    expect_failure(run({"text", "a.pfs", "-o", "/dev/full"}), 7,
                   "pfsdoc: a.pfs: the output /dev/full cannot be written: No space left");
    expect_failure(run({"text", "a.pfs"}, {.output = ""}), 7, "pfsdoc: a.pfs: the output cannot");
    expect_failure(run({"text", "a.pfs", "-o", "none/out"}), 7, "pfsdoc: a.pfs: the output");
}

// The signal of a file that grows beyond the system's limit would end the program at once.
TEST_F(Command, LimitOfTheSystemIsSeven)
{
    write("long",
          document_of(DocumentKind::write_b, bytes("0D '" + std::string(3000, 'x') + "' 0D 0E")));
    rlimit before{};
    ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &before), 0);
    const rlimit tight{2000, before.rlim_max};
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &tight), 0);
    const Outcome outcome = run({"text", "long", "-o", "new"});
    ::setrlimit(RLIMIT_FSIZE, &before);
    expect_failure(outcome, 7, "pfsdoc: long: the output new cannot be written: File too large");
    for (const auto &entry : fs::directory_iterator(directory)) {
        EXPECT_FALSE(entry.path().filename().string().starts_with(".pfsdoc-")) << entry.path();
        EXPECT_NE(entry.path().filename(), "new");
    }
}

TEST_F(Command, OutputFileEqualsStandardOutput)
{
    EXPECT_EQ(output_of({"text", "a.pfs", "-o", "text.out"}), "");
    EXPECT_EQ(content_of(directory / "text.out"), output_of({"text", "a.pfs"}));
    EXPECT_EQ(output_of({"trace", "a.pfs", "--output", "trace.out"}), "");
    EXPECT_EQ(content_of(directory / "trace.out"), output_of({"trace", "a.pfs"}));
    EXPECT_EQ(output_of({"text", "a.pfs", "-o", "-"}), output_of({"text", "a.pfs"}));
}

TEST_F(Command, FailureTouchesNoOutputFile)
{
    write("kept", "kept");
    write("empty", "");
    for (const char *input : {"none", "empty"}) {
        EXPECT_NE(run({"text", input, "-o", "kept"}).exit_code, 0);
        EXPECT_EQ(content_of(directory / "kept"), "kept");
        EXPECT_NE(run({"text", input, "-o", "new"}).exit_code, 0);
        EXPECT_FALSE(fs::exists(directory / "new"));
    }
}

TEST_F(Command, DoesNotReplaceTheDocumentByItsText)
{
    const std::string before = content_of(directory / "a.pfs");
    fs::create_hard_link(directory / "a.pfs", directory / "same");
    expect_failure(run({"text", "a.pfs", "-o", "a.pfs"}), 2, "pfsdoc: a.pfs: the output ");
    expect_failure(run({"text", "a.pfs", "-o", "same"}), 2, "pfsdoc: a.pfs: the output ");
    EXPECT_EQ(content_of(directory / "a.pfs"), before);
}

TEST_F(Command, UnfitModulesAreSeventy)
{
    write("no.so", "no library");
    for (const char *subcommand : {"text", "trace"}) {
        expect_failure(run({subcommand, "a.pfs", "--module", "none.so"}), 70,
                       "pfsdoc: a.pfs: the module cannot be loaded");
        expect_failure(run({subcommand, "a.pfs", "--module", "no.so"}), 70,
                       "pfsdoc: a.pfs: the module cannot be loaded");
    }
    ::setenv("VS_PFS_MODULE", "/none.so", 1);
    expect_failure(run({"text", "a.pfs"}), 70, "pfsdoc: a.pfs: the module cannot be loaded");
}

TEST_F(Command, ReadsTheSameThroughEveryModule)
{
    const std::string text = output_of({"text", "a.pfs"});
    EXPECT_EQ(output_of({"text", "a.pfs", "--module", "linked"}), text);
    EXPECT_EQ(output_of({"text", "a.pfs", "--module", VS_PFS_MODULE_FILE}), text);
    ::setenv("VS_PFS_MODULE", VS_PFS_MODULE_FILE, 1);
    EXPECT_EQ(output_of({"text", "a.pfs"}), text);
}

TEST_F(Command, FindsTheModuleBesideItself)
{
    EXPECT_TRUE(fs::exists(fs::path(PFSDOC_PROGRAM).parent_path() / "libvs_pfs.so"));
}

// Names that look special to a command line parser are still names.
TEST_F(Command, TakesNamesLiterally)
{
    const std::string document = content_of(directory / "a.pfs");
    for (const char *name : {"[x]", "[a,b]", "text", "--", "-x", "a b", "%%", "{}", "x=y"}) {
        write(name, document);
        EXPECT_NE(output_of({"identify", "--", name}).find("PFS: WRITE B"), std::string::npos)
            << name;
        EXPECT_EQ(output_of({"text", "--", name}), output_of({"text", "a.pfs"})) << name;
    }
    EXPECT_NE(output_of({"identify", "[x]", "text", "[a,b]"}).find("[a,b]: PFS: WRITE B"),
              std::string::npos);
}

TEST_F(Command, ShowsNoControlCharactersOfNames)
{
    const std::string name = "evil\x1B[31m\nname\xC2\x9B";
    write(name, content_of(directory / "a.pfs"));
    EXPECT_EQ(output_of({"identify", name}), "evil\\x1B[31m\\x0Aname\\xC2\\x9B: PFS: WRITE B\n");
    const Outcome outcome = run({"text", "none\x1B[31m"});
    expect_failure(outcome, 3, "pfsdoc: none\\x1B[31m: cannot be read");
}

// A name that turns what follows it around reads as another on a terminal.
TEST_F(Command, ShowsNoCharactersThatTurnTextAround)
{
    const std::string name = "fdp\xE2\x80\xAEtxt";
    expect_failure(run({"text", name}), 3, "pfsdoc: fdp\\xE2\\x80\\xAEtxt: cannot be read");
    expect_failure(run({"convert", "-t", name, "a.pfs"}), 2,
                   "pfsdoc: there is no output format \"fdp\\xE2\\x80\\xAEtxt\"");
    write("\xEF\xBB\xBF"
          "a.pfs",
          content_of(directory / "a.pfs"));
    EXPECT_EQ(output_of({"identify", "\xEF\xBB\xBF"
                                     "a.pfs"}),
              "\\xEF\\xBB\\xBFa.pfs: PFS: WRITE B\n");
    expect_failure(run({"text", "a.pfs", "-o", "none/\xD8\x9C"}), 7,
                   "pfsdoc: a.pfs: the output none/\\xD8\\x9C cannot be written");
}

// A closed standard error must not let messages end up in the output file.
TEST_F(Command, KeepsMessagesOutOfTheOutput)
{
    const Outcome outcome = run({"text", "none", "-o", "new"}, {.errors = ""});
    EXPECT_EQ(outcome.exit_code, 3);
    EXPECT_FALSE(fs::exists(directory / "new"));
    EXPECT_EQ(run({"text", "a.pfs", "-o", "new"}, {.errors = ""}).exit_code, 0);
    EXPECT_EQ(content_of(directory / "new"), output_of({"text", "a.pfs"}));
}

// Everything about one command is in its own page, which tests/manual_page.sh checks; the exit
// codes are checked by tests/exit_codes.sh.
TEST_F(Command, ManualPageNamesEveryCommand)
{
    const std::string page = content_of(PFSDOC_MANUAL_PAGE);
    const std::string help = output_of({"--help"});
    for (const char *command : {"identify", "text", "convert", "batch", "explain", "trace"}) {
        EXPECT_NE(help.find(std::string("\n  ") + command + " "), std::string::npos) << command;
        EXPECT_NE(page.find(std::string(".TP\n.B ") + command + "\n"), std::string::npos);
        EXPECT_NE(page.find(std::string(".BR pfsdoc\\-") + command + " (1)"), std::string::npos);
    }
}

// The manual documents everything that the output may contain.
TEST_F(Command, ManualPagesNameWhatTheOutputHolds)
{
    const fs::path pages = fs::path(PFSDOC_MANUAL_PAGE).parent_path();
    const std::string of_explain = content_of(pages / "pfsdoc-explain.1");
    for (int kind = 0; kind <= static_cast<int>(pfsdoc::SpanKind::cut); ++kind) {
        const std::string name(span_kind_name(static_cast<pfsdoc::SpanKind>(kind)));
        EXPECT_NE(of_explain.find(name), std::string::npos) << name;
    }
    const std::string of_identify = content_of(pages / "pfsdoc-identify.1");
    for (const auto level :
         {pfsdoc::Confidence::certain, pfsdoc::Confidence::likely, pfsdoc::Confidence::signature}) {
        const std::string name(confidence_name(level));
        EXPECT_NE(of_identify.find(".B " + name + "\n"), std::string::npos) << name;
    }
}

} // namespace
