// Whole files, written as OpenDocument. The single XML file is well-formed and defines each style
// that it uses once, and no other; its paragraphs have the document's text, except for spaces; the
// package's streams are parts of it; and a writer that is given scratch files writes the same.
#include "lib/base/scratch_file.h"
#include "lib/page/blank_bytes.h"
#include "pfsdoc/document.h"
#include "pfsdoc/writer.h"
#include "tests/support/odf_facts.h"
#include "tests/support/unpacked_package.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

namespace {

using namespace pfsdoc;

void require(bool holds)
{
    if (!holds) {
        std::abort();
    }
}

std::string written(Document &document, std::string_view format, const WriterOptions &options)
{
    StringOutput output;
    const auto writer =
        find_format(format)->make_writer(output, {document.kind(), "letter"}, options);
    static_cast<void>(document.read(*writer.value()));
    return output.text;
}

// Everything in the body but spaces, including commands.
class BodyText final : public BlockSink {
public:
    void paragraph(const Paragraph &paragraph) override
    {
        if (in_block_) {
            return;
        }
        for (std::size_t i = 0; i < paragraph.pieces.size(); ++i) {
            std::string bytes(paragraph.piece_bytes(i));
            std::erase_if(bytes, [](char byte) {
                return page::gap_bytes.find(byte) != std::string_view::npos;
            });
            CodePage::ibm437().append_utf8(text, bytes);
            text.append(paragraph.pieces[i].cut ? "..." : "");
        }
    }
    void page_break(uint32_t) override {}
    void block_begin(BlockKind) override
    {
        in_block_ = true;
    }
    void block_end() override
    {
        in_block_ = false;
    }
    void end_of_document() override {}

    std::string text;

private:
    bool in_block_ = false;
};

std::string without_spaces(std::string text)
{
    std::erase_if(text, [](char c) { return c == ' ' || c == '\t' || c == '\n'; });
    return text;
}

// From the start of the element to its end.
std::string_view element(std::string_view xml, const std::string &name)
{
    const std::size_t begin = xml.find("<" + name);
    const std::size_t end = xml.find("</" + name + ">");
    require(begin < end && end != xml.npos);
    return xml.substr(begin, end - begin);
}

void require_parts_of(const std::string &flat, const std::string &package)
{
    const std::string content = tests::entry_of(package, "content.xml");
    const std::string styles = tests::entry_of(package, "styles.xml");
    require(tests::OdfFacts(content).fault().empty());
    require(tests::OdfFacts(styles).fault().empty());
    require(element(content, "office:text") == element(flat, "office:text"));
    require(element(styles, "office:styles") == element(flat, "office:styles"));
    require(element(styles, "office:master-styles") == element(flat, "office:master-styles"));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, std::size_t size)
{
    static const std::array<int, 2> files = {base::open_scratch_file(), base::open_scratch_file()};
    auto document = Document::from_bytes({data, data + size});
    if (document.ok()) {
        WriterOptions options;
        options.commands = true;
        const std::string flat = written(document.value(), "fodt", options);
        const std::string package = written(document.value(), "odt", options);
        const tests::OdfFacts facts(flat);
        require(facts.fault().empty());
        BodyText body;
        static_cast<void>(document.value().read(body));
        require(without_spaces(facts.text()) == body.text);
        require_parts_of(flat, package);
        options.scratch_files = files;
        require(written(document.value(), "odt", options) == package);
    }
    return 0;
}
