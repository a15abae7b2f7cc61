#include "lib/page/paragraph_words.h"

#include "lib/page/blank_bytes.h"
#include "lib/page/paragraph_pieces.h"

#include <algorithm>

namespace pfsdoc::page {

namespace {

constexpr bool is_blank(char byte)
{
    return byte == ' ' || byte == zero_blank || byte == tab_byte;
}

// How many of the first bytes are blanks, or are not.
std::size_t stretch_of(std::string_view bytes, bool blanks)
{
    const auto end = std::find_if(bytes.begin(), bytes.end(),
                                  [blanks](char byte) { return is_blank(byte) != blanks; });
    return static_cast<std::size_t>(end - bytes.begin());
}

class WordSplitter {
public:
    WordSplitter(const CodePage &code_page, WordSink &sink) : code_page_(code_page), sink_(sink) {}

    void text(std::string_view bytes, AttributeSet attributes)
    {
        while (!bytes.empty()) {
            const bool blanks = is_blank(bytes.front());
            const std::size_t length = stretch_of(bytes, blanks);
            if (blanks) {
                add_blanks(length, attributes);
            } else {
                add_to_word(bytes.substr(0, length), attributes);
            }
            bytes.remove_prefix(length);
        }
    }

    void page_break()
    {
        end_line();
        sink_.page_break_in_text();
    }

    void end_line()
    {
        end_word();
        blanks_ = 0;
        line_has_words_ = false;
    }

private:
    void add_blanks(std::size_t count, AttributeSet attributes)
    {
        end_word();
        if (blanks_ == 0) {
            blank_attributes_ = all_attributes;
        }
        blanks_ += count;
        blank_attributes_ &= attributes;
    }

    void add_to_word(std::string_view bytes, AttributeSet attributes)
    {
        if (word_.parts.empty() || word_.parts.back().attributes != attributes) {
            word_.parts.push_back({word_.utf8.size(), attributes});
        }
        code_page_.append_utf8(word_.utf8, bytes);
    }

    void end_word()
    {
        if (word_.parts.empty()) {
            return;
        }
        if (blanks_ > 0 && line_has_words_) {
            const AttributeSet on_both_sides = last_attributes_ & word_.parts.front().attributes;
            sink_.blanks(blanks_, blank_attributes_ & on_both_sides);
        }
        sink_.word(word_);
        last_attributes_ = word_.parts.back().attributes;
        line_has_words_ = true;
        blanks_ = 0;
        word_.utf8.clear();
        word_.parts.clear();
    }

    const CodePage &code_page_;
    WordSink &sink_;

    Word word_;
    std::size_t blanks_ = 0; // in front of the word
    AttributeSet blank_attributes_ = all_attributes;
    AttributeSet last_attributes_ = 0; // of the end of the word before
    bool line_has_words_ = false;
};

} // namespace

void split_into_words(const Paragraph &paragraph, const WriterOptions &options,
                      AttributeSet supported, WordSink &sink)
{
    WordSplitter splitter(*options.code_page, sink);
    for (std::size_t i = 0; i < paragraph.pieces.size(); ++i) {
        const Piece &piece = paragraph.pieces[i];
        const AttributeSet attributes = piece.attributes & supported;
        if (piece.kind == PieceKind::text) {
            splitter.text(paragraph.piece_bytes(i), attributes);
        } else if (piece.kind == PieceKind::command && options.commands) {
            splitter.text(paragraph.piece_bytes(i), attributes);
            splitter.text(cut_mark(piece), attributes);
        } else if (piece.kind == PieceKind::page_break && options.page_breaks) {
            splitter.page_break();
        }
    }
    splitter.end_line();
}

} // namespace pfsdoc::page
