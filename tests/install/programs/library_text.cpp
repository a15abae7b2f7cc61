// A program in C++ on the library: writes a document as plain text, block by block. It reads
// each block in a document of its own, resumed from the token of the one before it, and passes it
// to the library's writer, which writes to an output of the program's own class: everything that a
// program can derive from, call, and get back is used across the library's boundary.
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

// Passes blocks to a sink, with consecutive header and footer lines as one block.
class Blocks {
public:
    explicit Blocks(pfsdoc::BlockSink &sink) : sink_(sink) {}

    void pass_on(const pfsdoc::Block &block)
    {
        if (block.kind != last_) {
            end_lines();
            if (is_line(block.kind)) {
                sink_.block_begin(block.kind == Kind::header_line ? pfsdoc::BlockKind::header
                                                                  : pfsdoc::BlockKind::footer);
            }
            last_ = block.kind;
        }
        for (uint64_t count = 0; count < block.page_breaks; ++count) {
            sink_.page_break(block.source);
        }
        if (block.kind != Kind::page_break) {
            sink_.paragraph(block.paragraph);
        }
    }
    void end()
    {
        end_lines();
        sink_.end_of_document();
    }

private:
    using Kind = pfsdoc::Block::Kind;

    static bool is_line(Kind kind)
    {
        return kind == Kind::header_line || kind == Kind::footer_line;
    }
    void end_lines()
    {
        if (is_line(last_)) {
            sink_.block_end();
        }
    }

    pfsdoc::BlockSink &sink_;
    Kind last_ = Kind::page_break;
};

// The token for the next block, or nothing at the document's end.
std::optional<std::string> pass_one_block(const char *path, const std::string &token,
                                          Blocks &blocks)
{
    pfsdoc::Result<pfsdoc::Document> document = pfsdoc::Document::open(path);
    if (!token.empty()) {
        const auto place = pfsdoc::ResumeToken::parse(token);
        if (!document.value().resume(place.value()).ok()) {
            return std::nullopt;
        }
    }
    const auto block = document.value().next();
    if (!block.ok() || !block.value()) {
        return std::nullopt;
    }
    blocks.pass_on(*block.value());
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
    Blocks blocks(*writer.value());
    std::optional<std::string> token = "";
    while (token) {
        token = pass_one_block(argv[1], *token, blocks);
    }
    blocks.end();
    return 0;
}
