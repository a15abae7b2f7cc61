// Bodies of First Choice 3. A line begins with header bytes that say whether it is text, a
// ruler or a page break, and whether a text line ends its paragraph: it does if there are two of
// them and the second has the bit.
// Test: tests/builder/choice3_encoder_test.cpp.
#include "builder/bytes.h"
#include "builder/choice_characters.h"
#include "builder/encoders.h"
#include "builder/word_wrap.h"

#include <algorithm>

namespace pfs_builder {
namespace {

class Choice3Body {
public:
    explicit Choice3Body(const Document &document) : document_(document), margins_(document.margins)
    {
        for (const Element &element : document.body) {
            std::visit([this](const auto &one) { put(one); }, element);
        }
        append(bytes_, document_end);
    }

    const std::string &bytes() const
    {
        return bytes_;
    }

private:
    void put(const Paragraph &paragraph)
    {
        const WrapRules rules = {margins_.left - 1, margins_.right - 1, false};
        for (const StoredLine &line : wrap_words(paragraph, rules)) {
            put_line(paragraph, line);
        }
    }

    void put_line(const Paragraph &paragraph, const StoredLine &line)
    {
        if (line.wrapped) {
            append(bytes_, choice::line_text);
        } else {
            append(bytes_, choice::line_text | choice::line_more);
            append(bytes_, choice::line_hard_end);
        }
        bytes_.append(static_cast<std::size_t>(line.indent), space);
        for (std::size_t i = line.begin; i < line.end; ++i) {
            put_cell(paragraph.cells[i]);
        }
        append(bytes_, carriage_return);
    }

    void put_cell(const Cell &cell)
    {
        if (document_.plain_spaces && is_space(cell)) {
            append(bytes_, space);
        } else {
            bytes_ += encode_choice_cell(cell);
        }
    }

    // The margins that it marks apply to the lines that follow.
    void put(const RulerLine &ruler)
    {
        append(bytes_, choice::line_special | choice::line_ruler);
        bytes_.append(choice::ruler_unused_bytes, '\0');
        for (const char column : ruler.columns) {
            bytes_.push_back(column);
            const auto byte = static_cast<uint8_t>(column);
            if (byte == choice::prefix_low || byte == choice::prefix_high) {
                append(bytes_, choice::keep_high_bit);
            }
        }
        append(bytes_, carriage_return);
        take_margins(ruler.columns);
    }

    void take_margins(const std::string &columns)
    {
        if (const std::size_t left = columns.rfind(static_cast<char>(choice::mark_left_margin));
            left != std::string::npos) {
            margins_.left = static_cast<int>(left) + 1;
        }
        if (const std::size_t right = columns.rfind(static_cast<char>(choice::mark_right_margin));
            right != std::string::npos) {
            margins_.right = static_cast<int>(right) + 1;
        }
    }

    void put(const PageBreakLine &line)
    {
        append(bytes_, choice::line_special);
        bytes_ += line.text;
        append(bytes_, carriage_return);
    }

    void put(const RawBytes &raw)
    {
        bytes_ += raw.bytes;
    }
    void put(const MarginRecord &) {}
    void put(const OtherRecord &) {}
    void put(const Spacing &) {}

    const Document &document_;
    Margins margins_;
    std::string bytes_;
};

} // namespace

std::optional<Fault> encode_choice3(const Document &document, std::string &file)
{
    file = choice_header(document) + Choice3Body(document).bytes();
    return std::nullopt;
}

} // namespace pfs_builder
