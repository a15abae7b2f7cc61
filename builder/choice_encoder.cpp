// Bodies of First Choice before its third generation: the lines of the page, each ended by a
// byte that gives the spacing but not whether the line was wrapped.
// Test: tests/builder/choice_encoder_test.cpp.
#include "builder/bytes.h"
#include "builder/choice_characters.h"
#include "builder/encoders.h"
#include "builder/line_ends.h"
#include "builder/word_wrap.h"

namespace pfs_builder {
namespace {

class ChoiceBody {
public:
    explicit ChoiceBody(const Document &document) : document_(document)
    {
        for (const Element &element : document.body) {
            put(element);
        }
        append(bytes_, document_end);
    }

    const std::string &bytes() const
    {
        return bytes_;
    }

    std::optional<Fault> check() const
    {
        return check_line_ends(document_, document_.margins, bytes_, ends_, choice_line_reading);
    }

private:
    void put(const Element &element)
    {
        if (const auto *paragraph = std::get_if<Paragraph>(&element)) {
            put_paragraph(*paragraph);
        } else if (const auto *spacing = std::get_if<Spacing>(&element)) {
            double_spacing_ = spacing->is_double;
        } else if (const auto *raw = std::get_if<RawBytes>(&element)) {
            bytes_ += raw->bytes;
        }
    }

    void put_paragraph(const Paragraph &paragraph)
    {
        const WrapRules rules = {document_.margins.left - 1, document_.margins.right - 1, false};
        for (const StoredLine &line : wrap_words(paragraph, rules)) {
            put_line(paragraph, line);
        }
    }

    void put_line(const Paragraph &paragraph, const StoredLine &line)
    {
        const std::size_t begin = bytes_.size();
        bytes_.append(static_cast<std::size_t>(line.indent), space);
        for (std::size_t i = line.begin; i < line.end; ++i) {
            put_cell(paragraph.cells[i]);
        }
        const Location &location =
            line.end > line.begin ? paragraph.cells[line.end - 1].location : paragraph.location;
        ends_.push_back({begin, bytes_.size(), line.wrapped, location});
        append(bytes_, double_spacing_ ? choice::line_end_double : choice::line_end_single);
    }

    void put_cell(const Cell &cell)
    {
        if (document_.plain_spaces && is_space(cell)) {
            append(bytes_, space);
        } else {
            bytes_ += encode_choice_cell(cell);
        }
    }

    const Document &document_;
    bool double_spacing_ = false;
    std::string bytes_;
    std::vector<LineEnd> ends_;
};

} // namespace

std::optional<Fault> encode_choice(const Document &document, std::string &file)
{
    const ChoiceBody body(document);
    file = choice_header(document) + body.bytes();
    return body.check();
}

} // namespace pfs_builder
