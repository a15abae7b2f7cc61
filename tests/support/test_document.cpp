#include "tests/support/test_document.h"

#include "tests/support/notation.h"
#include "tests/support/raw_documents.h"

#include <algorithm>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace tests {
namespace {

constexpr std::string_view document_section = "== document";
constexpr std::string_view trace_section = "== trace";

// The document section, as far as it has been read.
struct Draft {
    std::string family;
    int kind = 0; // format type, or generation byte
    Patches patches;
    std::string body;
    bool in_body = false;
};

// Removes a comment: everything from a # outside quotes.
std::string without_comment(const std::string &line)
{
    bool quoted = false;
    for (std::size_t i = 0; i < line.size(); ++i) {
        quoted = quoted != (line[i] == '\'');
        if (!quoted && line[i] == '#') {
            return line.substr(0, i);
        }
    }
    return line;
}

uint16_t stored_margin(std::istream &words)
{
    int margin = 0;
    if (!(words >> margin)) {
        throw std::invalid_argument("margins are two numbers");
    }
    return static_cast<uint16_t>(margin - 1);
}

// "write 2, margins 1 65"
void start_document(Draft &draft, std::istream &words)
{
    std::string kind;
    std::string margins;
    if (!(words >> kind >> margins) || kind.size() != 2 || kind[1] != ',' || margins != "margins") {
        throw std::invalid_argument("a kind and margins belong to the first line");
    }
    draft.kind = draft.family == "write" ? kind[0] - '0' : kind[0];
    const uint16_t left = stored_margin(words);
    const uint16_t right = stored_margin(words);
    draft.patches.push_back(draft.family == "write" ? write_margins(left, right)
                                                    : choice_margins(left, right));
}

// "header 1 'Top'"
void add_header_line(Draft &draft, bool footer, std::istream &words)
{
    int number = 0;
    std::string text;
    words >> number;
    std::getline(words, text);
    if (number != 1 && number != 2) {
        throw std::invalid_argument("lines are numbered 1 and 2");
    }
    const int line = (footer ? 2 : 0) + number - 1;
    draft.patches.push_back(draft.family == "write" ? write_header_line(line, bytes(text))
                                                    : choice_header_line(line, bytes(text)));
}

// "at 822: 02 00"
void add_patch(Draft &draft, std::istream &words)
{
    std::size_t offset = 0;
    char colon = 0;
    std::string text;
    if (!(words >> offset >> colon) || colon != ':') {
        throw std::invalid_argument("an offset and a colon belong before the bytes");
    }
    std::getline(words, text);
    draft.patches.push_back({offset, bytes(text)});
}

void read_document_line(Draft &draft, const std::string &line)
{
    std::istringstream words(line);
    std::string word;
    if (draft.in_body) {
        draft.body += bytes(line);
    } else if (!(words >> word)) {
        return;
    } else if (draft.family.empty() && (word == "write" || word == "choice")) {
        draft.family = word;
        start_document(draft, words);
    } else if (draft.family.empty()) {
        throw std::invalid_argument("the first line says write or choice");
    } else if (word == "header" || word == "footer") {
        add_header_line(draft, word == "footer", words);
    } else if (word == "at") {
        add_patch(draft, words);
    } else if (word == "body:") {
        draft.in_body = true;
    } else {
        throw std::invalid_argument("not understood: " + line);
    }
}

std::string finished_document(const Draft &draft)
{
    if (!draft.in_body) {
        throw std::invalid_argument("no body");
    }
    return draft.family == "write"
               ? write_document(draft.kind, draft.body, draft.patches)
               : choice_document(static_cast<char>(draft.kind), draft.body, draft.patches);
}

enum class Section { prose, document, trace };

struct Reading {
    TestDocument document;
    Draft draft;
    Section section = Section::prose;
};

void read_line(Reading &reading, const std::string &line)
{
    if (line == document_section) {
        reading.section = Section::document;
    } else if (line == trace_section) {
        reading.document.bytes = finished_document(reading.draft);
        reading.section = Section::trace;
    } else if (reading.section == Section::document) {
        read_document_line(reading.draft, without_comment(line));
    } else if (reading.section == Section::trace) {
        reading.document.trace += line + '\n';
    }
}

} // namespace

TestDocument read_test_document(const std::filesystem::path &path)
{
    Reading reading;
    reading.document.name = path.stem().string();
    std::ifstream file(path);
    std::string line;
    for (int number = 1; std::getline(file, line); ++number) {
        try {
            read_line(reading, line);
        } catch (const std::invalid_argument &fault) {
            throw std::invalid_argument(path.filename().string() + ":" + std::to_string(number) +
                                        ": " + fault.what());
        }
    }
    if (reading.document.trace.empty()) {
        throw std::invalid_argument(path.filename().string() + ": no trace");
    }
    return reading.document;
}

std::vector<std::filesystem::path> test_document_paths(const std::filesystem::path &directory)
{
    std::vector<std::filesystem::path> paths;
    for (const auto &entry : std::filesystem::directory_iterator(directory)) {
        if (entry.path().extension() == ".txt") {
            paths.push_back(entry.path());
        }
    }
    std::sort(paths.begin(), paths.end());
    return paths;
}

} // namespace tests
