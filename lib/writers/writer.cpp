#include "pfsdoc/writer.h"

#include "lib/reading/text_commands.h"
#include "pfsdoc/attribute_names.h"

#include <algorithm>
#include <array>

namespace pfsdoc {

namespace {

struct AttributeLoss {
    AttributeCode code;
    Loss loss;
};
constexpr std::array<AttributeLoss, 5> attribute_losses = {{
    {AttributeCode::bold, Loss::bold},
    {AttributeCode::italic, Loss::italic},
    {AttributeCode::underline, Loss::underline},
    {AttributeCode::subscript, Loss::subscript},
    {AttributeCode::superscript, Loss::superscript},
}};

uint64_t undefined_characters(std::string_view bytes, const CodePage &code_page)
{
    const auto undefined = [&code_page](char byte) {
        return !code_page.defines(static_cast<uint8_t>(byte));
    };
    return static_cast<uint64_t>(std::count_if(bytes.begin(), bytes.end(), undefined));
}

} // namespace

void Writer::add_common_losses(const Paragraph &paragraph, const WriterOptions &options)
{
    const bool only_text = paragraph.pieces.size() <= 1 && paragraph.omitted_command_bytes == 0;
    if (only_text && options.code_page->is_complete() &&
        (paragraph.pieces.empty() || paragraph.pieces.front().kind == PieceKind::text)) {
        return;
    }
    for (std::size_t i = 0; i < paragraph.pieces.size(); ++i) {
        const Piece &piece = paragraph.pieces[i];
        const std::string_view bytes = paragraph.piece_bytes(i);
        const bool is_command = piece.kind == PieceKind::command;
        if (is_command && !options.commands && !reading::command_takes_effect(bytes)) {
            losses_.add(Loss::command, piece.source);
        }
        if (is_command && piece.cut) {
            losses_.add(Loss::cut_command, piece.source);
        }
        const bool is_shown = !is_command || options.commands;
        if (is_shown && !options.code_page->is_complete()) {
            losses_.add(Loss::character, piece.source,
                        undefined_characters(bytes, *options.code_page));
        }
    }
}

void Writer::add_attribute_losses(const Paragraph &paragraph, AttributeSet unsupported)
{
    for (const Piece &piece : paragraph.pieces) {
        const AttributeSet lost = piece.attributes & unsupported;
        if (lost == 0 || piece.kind != PieceKind::text) {
            continue;
        }
        for (const AttributeLoss &entry : attribute_losses) {
            if ((lost & attribute_bit(entry.code)) != 0) {
                losses_.add(entry.loss, piece.source);
            }
        }
    }
}

} // namespace pfsdoc
