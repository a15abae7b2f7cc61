// A reader that remembers its position: shows the next paragraphs of a document, stores the
// position in a file, and continues from there when it is run again.
//
//   resumable_reader LETTER.DOC letter.place 3
#include <pfsdoc/document.h>
#include <pfsdoc/paragraph_text.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>

static int fail(const pfsdoc::Error &error)
{
    std::fprintf(stderr, "resumable_reader: %s\n", error.what.c_str());
    return pfsdoc::exit_code(error.kind);
}

// Continues where the last run stopped, if there was one.
static pfsdoc::Status find_place(pfsdoc::Document &document, const std::string &place_file)
{
    std::ifstream file(place_file);
    const std::string kept{std::istreambuf_iterator<char>(file), {}};
    if (kept.empty()) {
        return {};
    }
    const auto token = pfsdoc::ResumeToken::parse(kept);
    return token.ok() ? document.resume(token.value()) : token.error();
}

int main(int argc, char **argv)
{
    if (argc != 4) {
        std::fputs("usage: resumable_reader DOCUMENT PLACE-FILE PARAGRAPHS\n", stderr);
        return 2;
    }
    auto document = pfsdoc::Document::open(argv[1]);
    if (!document.ok()) {
        return fail(document.error());
    }
    if (const pfsdoc::Status failure = find_place(document.value(), argv[2]); !failure.ok()) {
        return fail(failure.error());
    }
    for (int left = std::atoi(argv[3]); left > 0;) {
        const auto block = document.value().next();
        if (!block.ok() || !block.value()) { // the next run starts over
            std::remove(argv[2]);
            return block.ok() ? std::puts("(the end)") < 0 : fail(block.error());
        }
        if (block.value()->kind == pfsdoc::Block::Kind::paragraph) {
            std::puts(pfsdoc::plain_text(block.value()->paragraph).c_str());
            --left;
        }
    }
    const auto place = document.value().place();
    if (!place.ok()) {
        return fail(place.error());
    }
    return std::ofstream(argv[2]) << place.value().text() << std::flush ? 0 : 7;
}
