// Bodies of PFS: WRITE and IBM Writing Assistant: the lines of the page, each ended by a return
// whether it was wrapped or not. The reader swallows the first return of the body, so one is
// written before the first line.
// Test: tests/builder/write_encoder_test.cpp.
#include "builder/bytes.h"
#include "builder/encoders.h"
#include "builder/line_ends.h"
#include "builder/word_wrap.h"
#include "builder/write_characters.h"

namespace pfs_builder {
namespace {

class WriteBody {
public:
    explicit WriteBody(const Document &document)
        : document_(document), margins_(margins_before_body(document)),
          is_writing_assistant_(document.kind == Kind::writing_assistant)
    {
        append(bytes_, carriage_return);
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
        return check_line_ends(document_, margins_, bytes_, ends_,
                               is_writing_assistant_ ? writing_assistant_line_reading
                                                     : write_line_reading);
    }

private:
    void put(const Element &element)
    {
        if (const auto *paragraph = std::get_if<Paragraph>(&element)) {
            put_paragraph(*paragraph);
        } else if (const auto *raw = std::get_if<RawBytes>(&element)) {
            bytes_ += raw->bytes;
        }
    }

    void put_paragraph(const Paragraph &paragraph)
    {
        const WrapRules rules = {margins_.left - 1, margins_.right - 1, false};
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
        append(bytes_, carriage_return);
    }

    void put_cell(const Cell &cell)
    {
        if (is_writing_assistant_) {
            bytes_ += encode_writing_assistant_cell(cell);
        } else if (document_.plain_spaces && is_space(cell)) {
            append(bytes_, space);
        } else {
            bytes_ += encode_write_cell(cell);
        }
    }

    const Document &document_;
    Margins margins_;
    bool is_writing_assistant_;
    std::string bytes_;
    std::vector<LineEnd> ends_;
};

} // namespace

std::optional<Fault> encode_write(const Document &document, std::string &file)
{
    const WriteBody body(document);
    file = write_header(document) + body.bytes();
    return body.check();
}

} // namespace pfs_builder
