#include "text_writer.h"

#include "formats.h"
#include "page_geometry.h"

#include <algorithm>
#include <limits>

namespace pfsdoc {

namespace {

constexpr std::string_view cut_mark = "...";

bool is_text_only(const Paragraph &paragraph)
{
    return std::all_of(paragraph.pieces.begin(), paragraph.pieces.end(),
                       [](const Piece &piece) { return piece.kind == PieceKind::text; });
}

} // namespace

// ---------------------------------------------------------------- TextBlockWriter -----

TextBlockWriter::TextBlockWriter(Output &output, const WriterOptions &options)
    : options_(options), text_(output, *options.code_page), layout_(text_),
      footer_text_(footers_, *options.code_page), footer_layout_(footer_text_)
{
}

void TextBlockWriter::paragraph(const Paragraph &paragraph)
{
    LineLayout &layout = place_ == Place::footer ? footer_layout_ : layout_;
    layout.begin(line_geometry(paragraph));
    for (std::size_t i = 0; i < paragraph.pieces.size(); ++i) {
        lay_out_piece(paragraph, i, layout);
    }
    layout.end(place_ == Place::body && is_text_only(paragraph));
}

void TextBlockWriter::lay_out_piece(const Paragraph &paragraph, std::size_t index,
                                    LineLayout &layout)
{
    const Piece &piece = paragraph.pieces[index];
    switch (piece.kind) {
    case PieceKind::text: lay_out_text(paragraph.piece_bytes(index), layout); break;
    case PieceKind::command:
        if (options_.commands) {
            lay_out_text(paragraph.piece_bytes(index), layout);
            lay_out_text(piece.cut ? cut_mark : std::string_view(), layout);
        }
        break;
    case PieceKind::page_break:
        if (options_.page_breaks && place_ == Place::body) {
            layout.end_line();
            text_.form_feed();
        }
        break;
    }
}

void TextBlockWriter::lay_out_text(std::string_view bytes, LineLayout &layout)
{
    if (place_ == Place::footer) {
        bytes = bytes.substr(0, max_footer_bytes - footer_bytes_);
        footer_bytes_ += bytes.size();
    }
    layout.text(bytes);
}

void TextBlockWriter::page_break(uint32_t)
{
    if (options_.page_breaks && place_ == Place::body) {
        text_.form_feed();
    }
}

void TextBlockWriter::block_begin(BlockKind kind)
{
    place_ = kind == BlockKind::header ? Place::header : Place::footer;
}

void TextBlockWriter::block_end()
{
    if (place_ == Place::header && !text_.empty()) {
        text_.separate();
    }
    place_ = Place::body;
}

void TextBlockWriter::end_of_document()
{
    footer_text_.finish();
    if (!footers_.text.empty() && !text_.empty()) {
        text_.separate();
    }
    text_.utf8(footers_.text);
    text_.finish();
}

// --------------------------------------------------------------------- TextWriter -----

TextWriter::TextWriter(Output &output, const WriterOptions &options)
    : blocks_(output, options), collector_(blocks_)
{
}

int32_t TextWriter::on_event(const Event &event, uint32_t offset)
{
    return collector_.on_event(event, offset);
}

void TextWriter::on_characters(std::string_view bytes)
{
    collector_.on_characters(bytes);
}

void TextWriter::finish()
{
    collector_.finish();
}

// ------------------------------------------------------------------------ format ------

namespace {

Result<std::unique_ptr<Writer>> make_writer(Output &output, const DocumentInfo &,
                                            const WriterOptions &options)
{
    return std::unique_ptr<Writer>(std::make_unique<TextBlockWriter>(output, options));
}

} // namespace

const Format text_format = {
    .name = "text",
    .extension = "txt",
    .description = "plain text in UTF-8, as the page shows it",
    .options = "page_breaks headers commands wrap raw_lines ",
    .make_writer = make_writer,
    .make_event_writer = nullptr,
    .wants_offsets = false,
};

} // namespace pfsdoc
