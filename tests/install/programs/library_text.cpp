// A program in C++ on the library: writes a document as plain text, in blocks. It reads each
// block in a document of its own, going on from the token that the one before it gave, and
// hands it to the library's writer through a sink of its own class: what a program can derive
// from, call, and get back is all used across the library's border.
#include <pfsdoc/document.h>
#include <pfsdoc/writer.h>

#include <cstdio>
#include <memory>
#include <optional>
#include <string>

namespace {

class Standard final : public pfsdoc::Output {
public:
    void write(std::string_view bytes) override
    {
        std::fwrite(bytes.data(), 1, bytes.size(), stdout);
    }
};

void pass_on(const pfsdoc::Block &block, pfsdoc::BlockSink &sink)
{
    using Kind = pfsdoc::Block::Kind;
    if (block.kind == Kind::page_break) {
        for (uint64_t count = 0; count < block.page_breaks; ++count) {
            sink.page_break(block.source);
        }
    } else if (block.kind == Kind::paragraph) {
        sink.paragraph(block.paragraph);
    } else {
        const bool is_header = block.kind == Kind::header_line;
        sink.block_begin(is_header ? pfsdoc::BlockKind::header : pfsdoc::BlockKind::footer);
        sink.paragraph(block.paragraph);
        sink.block_end();
    }
}

// The token in front of the next block, or nothing at the document's end.
std::optional<std::string> pass_one_block(const char *path, const std::string &token,
                                          pfsdoc::BlockSink &sink)
{
    pfsdoc::Result<pfsdoc::Document> document = pfsdoc::Document::open(path);
    if (!token.empty()) {
        const auto place = pfsdoc::ResumeToken::parse(token);
        if (document.value().resume(place.value())) {
            return std::nullopt;
        }
    }
    const auto block = document.value().next();
    if (!block.ok() || !block.value()) {
        return std::nullopt;
    }
    pass_on(*block.value(), sink);
    return document.value().place().value().text();
}

} // namespace

int main(int argc, char **argv)
{
    const auto document = pfsdoc::Document::open(argc == 2 ? argv[1] : "");
    if (!document.ok()) {
        std::fprintf(stderr, "library_text: %s\n", document.error().what.c_str());
        return pfsdoc::exit_code(document.error().kind);
    }
    Standard output;
    const pfsdoc::DocumentInfo info{document.value().kind(), ""};
    const auto writer = pfsdoc::find_format("text")->make_writer(output, info, {});
    std::optional<std::string> token = "";
    while (token) {
        token = pass_one_block(argv[1], *token, *writer.value());
    }
    writer.value()->end_of_document();
    return 0;
}
