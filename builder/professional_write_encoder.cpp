// Bodies of Professional Write. A line begins with a type byte, which also ends the line before.
// So the last line needs such a byte after it, or the end of the document would swallow its line
// end.
//
// A suppressed stretch is in a line of the suppressing type, which is soft; the same byte again
// in the middle of the line begins the stretch, and the next line's byte ends it.
// Test: tests/builder/professional_write_encoder_test.cpp.
#include "builder/bytes.h"
#include "builder/encoders.h"
#include "builder/word_wrap.h"
#include "builder/write_characters.h"
#include "formats/write_family.h"

namespace pfs_builder {
namespace {

using namespace formats::write;

class ProfessionalWriteBody {
public:
    explicit ProfessionalWriteBody(const Document &document)
        : margins_(margins_before_body(document))
    {
        for (const Element &element : document.body) {
            std::visit([this](const auto &one) { put(one); }, element);
        }
        append(bytes_, line_continued);
        bytes_ += records_;
        append(bytes_, document_end);
    }

    const std::string &bytes() const
    {
        return bytes_;
    }

private:
    void put(const Paragraph &paragraph)
    {
        const WrapRules rules = {margins_.left - 1, margins_.right - 1, true};
        for (const StoredLine &line : wrap_words(paragraph, rules)) {
            put_line(paragraph, line);
        }
    }

    void put_line(const Paragraph &paragraph, const StoredLine &line)
    {
        append(bytes_, line_type(paragraph, line));
        bytes_.append(static_cast<std::size_t>(line.indent), space);
        bytes_ += records_;
        records_.clear();
        bool hidden = false;
        for (std::size_t i = line.begin; i < line.end; ++i) {
            const Cell &cell = paragraph.cells[i];
            if (cell.hidden && !hidden) {
                append(bytes_, line_suppress);
            }
            hidden = cell.hidden;
            bytes_ += encode_professional_write_cell(cell);
        }
    }

    uint8_t line_type(const Paragraph &paragraph, const StoredLine &line) const
    {
        if (line.end > line.begin && paragraph.cells[line.end - 1].hidden) {
            return line_suppress;
        }
        if (line.wrapped) {
            return line_continued;
        }
        return double_spacing_ ? line_double : line_single;
    }

    // A record is held back until the beginning of the next line, where it follows the indent:
    // readers report the spaces after a record as characters.
    void put(const MarginRecord &record)
    {
        margins_ = record.margins;
        records_ += encode_record(record);
    }

    void put(const OtherRecord &record)
    {
        records_ += encode_record(record);
    }
    void put(const Spacing &spacing)
    {
        double_spacing_ = spacing.is_double;
    }
    void put(const RawBytes &raw)
    {
        bytes_ += raw.bytes;
    }
    void put(const RulerLine &) {}
    void put(const PageBreakLine &) {}

    Margins margins_;
    bool double_spacing_ = false;
    std::string records_;
    std::string bytes_;
};

} // namespace

std::optional<Fault> encode_professional_write(const Document &document, std::string &file)
{
    file = write_header(document) + ProfessionalWriteBody(document).bytes();
    return std::nullopt;
}

} // namespace pfs_builder
