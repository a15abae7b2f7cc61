#include "lib/writers/json_writer.h"

#include "lib/base/json_text.h"
#include "lib/base/printable.h"
#include "lib/page/blank_bytes.h"
#include "lib/page/page_geometry.h"
#include "lib/writers/formats.h"
#include "pfsdoc/attribute_names.h"
#include "vs_pfs.h"

namespace pfsdoc::writers {

namespace {

constexpr std::string_view body_type = "paragraph";
constexpr std::string_view header_type = "header";
constexpr std::string_view footer_type = "footer";

// Large enough that a write is worth its cost.
constexpr std::size_t chunk_size = 65536;
// Bytes converted between two looks at the buffer's size.
constexpr std::size_t stretch_size = 4096;

// An item of a list that was begun with '['.
void append_separator(std::string &json)
{
    if (json.back() != '[') {
        json.push_back(',');
    }
}

std::string_view alignment_name(page::LineAlignment alignment)
{
    switch (alignment) {
    case page::LineAlignment::right: return "right";
    case page::LineAlignment::centre: return "centre";
    case page::LineAlignment::left: break;
    }
    return "left";
}

// A code without a known meaning is named by its number.
void append_attributes(std::string &json, AttributeSet attributes)
{
    base::append_json_name(json, "attributes");
    json.push_back('[');
    for (int32_t code = 0; code < attribute_codes_end; ++code) {
        if ((attributes & attribute_bit(code)) == 0) {
            continue;
        }
        append_separator(json);
        const std::string_view name = attribute_name(code);
        base::append_json_string(json,
                                 name.empty() ? "code " + std::to_string(code) : std::string(name));
    }
    json.push_back(']');
}

// Numbers in two lists, behind another member: each paragraph has them, and there may be thirty.
void append_tab_stops(std::string &json, const TabStops &stops, std::string_view name,
                      VwTabKind kind)
{
    json.append(",\"").append(name).append("\":[");
    for (const TabStop &stop : stops) {
        if ((stop.kind == VW_TAB_DECIMAL) == (kind == VW_TAB_DECIMAL)) {
            append_separator(json);
            json.append(std::to_string(stop.position));
        }
    }
    json.push_back(']');
}

} // namespace

JsonWriter::JsonWriter(Output &output, const DocumentInfo &info, const WriterOptions &options)
    : output_(output), options_(options), paragraph_type_(body_type)
{
    options_.commands = true;
    append_document(info);
}

void JsonWriter::append_document(const DocumentInfo &info)
{
    json_.append("{\"pfsdoc\":").append(std::to_string(json_schema_version));
    json_.append(",\"document\":{\"kind\":");
    base::append_json_string(json_, display_name(info.kind));
    base::append_json_member(json_, "file_id", file_id(info.kind));
    base::append_json_member(json_, "title", base::printable(info.title));
    base::append_json_member(json_, "charset", options_.code_page->name());
    json_.append(options_.lines ? "}}\n" : "},\n\"blocks\":[\n");
}

// -------------------------------------------------------------------- blocks ----------

void JsonWriter::begin_block(std::string_view type)
{
    if (blocks_ > 0 && !options_.lines) {
        json_.append(",\n");
    }
    ++blocks_;
    json_.append("{\"type\":\"").append(type).append("\"");
}

void JsonWriter::end_block()
{
    json_.append(options_.lines ? "}\n" : "}");
    hand_on();
}

void JsonWriter::hand_on()
{
    if (json_.size() >= chunk_size) {
        output_.write(json_);
        json_.clear();
    }
}

void JsonWriter::page_break(uint32_t source)
{
    if (options_.page_breaks) {
        begin_block("page_break");
        base::append_json_member(json_, "source", source);
        end_block();
    }
}

void JsonWriter::block_begin(BlockKind kind)
{
    paragraph_type_ = kind == BlockKind::header ? header_type : footer_type;
}

void JsonWriter::block_end()
{
    paragraph_type_ = body_type;
}

void JsonWriter::paragraph(const Paragraph &paragraph)
{
    const bool in_body = paragraph_type_ == body_type;
    if (!in_body && (!options_.headers || paragraph.pieces.empty())) {
        return;
    }
    add_common_losses(paragraph, options_);
    begin_block(paragraph_type_);
    append_layout(paragraph);
    base::append_json_name(json_, "runs");
    json_.push_back('[');
    for (std::size_t i = 0; i < paragraph.pieces.size(); ++i) {
        append_run(paragraph, i);
    }
    json_.push_back(']');
    end_block();
}

void JsonWriter::append_layout(const Paragraph &paragraph)
{
    base::append_json_member(json_, "source_begin", paragraph.source_begin);
    base::append_json_member(json_, "source_end", paragraph.source_end);
    base::append_json_member(json_, "alignment", alignment_name(page::line_alignment(paragraph)));
    base::append_json_member(json_, "left_indent", paragraph.left_indent);
    base::append_json_member(json_, "first_line_indent", paragraph.first_line_indent);
    base::append_json_member(json_, "line_spacing", paragraph.line_spacing);
    base::append_json_member(json_, "left_margin", paragraph.margins.left);
    base::append_json_member(json_, "right_margin", paragraph.margins.right);
    if (!tab_stops_.is_shared_with(paragraph.tab_stops) || tab_stops_json_.empty()) {
        tab_stops_ = paragraph.tab_stops;
        tab_stops_json_.clear();
        append_tab_stops(tab_stops_json_, tab_stops_, "tab_stops", VW_TAB_LEFT);
        append_tab_stops(tab_stops_json_, tab_stops_, "decimal_tab_stops", VW_TAB_DECIMAL);
    }
    json_.append(tab_stops_json_);
}

// ---------------------------------------------------------------------- runs ----------

void JsonWriter::append_run(const Paragraph &paragraph, std::size_t index)
{
    const Piece &piece = paragraph.pieces[index];
    if (piece.kind == PieceKind::page_break && !options_.page_breaks) {
        return;
    }
    append_separator(json_);
    hand_on(); // where no separator has to look back
    switch (piece.kind) {
    case PieceKind::text: json_.append("{\"type\":\"text\""); break;
    case PieceKind::command: json_.append("{\"type\":\"command\""); break;
    case PieceKind::page_break: json_.append("{\"type\":\"page_break\""); break;
    }
    if (piece.kind != PieceKind::page_break) {
        append_text(paragraph.piece_bytes(index));
        append_attributes(json_, piece.attributes);
    }
    if (piece.cut) {
        json_.append(",\"cut\":true");
    }
    base::append_json_member(json_, "source", piece.source);
    json_.push_back('}');
}

// A stretch at a time.
void JsonWriter::append_text(std::string_view bytes)
{
    base::append_json_name(json_, "text");
    json_.push_back('"');
    while (!bytes.empty()) {
        std::string_view stretch = bytes.substr(0, stretch_size);
        bytes.remove_prefix(stretch.size());
        utf8_.clear();
        while (!stretch.empty()) {
            const std::string_view characters = stretch.substr(0, stretch.find(page::tab_byte));
            options_.code_page->append_utf8(utf8_, characters);
            stretch.remove_prefix(characters.size());
            if (!stretch.empty()) {
                utf8_.push_back(page::tab_byte);
                stretch.remove_prefix(1);
            }
        }
        base::append_json_characters(json_, utf8_);
        hand_on();
    }
    json_.push_back('"');
}

// ----------------------------------------------------------------------- end ----------

void JsonWriter::append_losses()
{
    base::append_json_name(json_, "losses");
    json_.push_back('[');
    for (const LossEntry &entry : losses_.entries()) {
        append_separator(json_);
        json_.append("{\"what\":");
        base::append_json_string(json_, loss_name(entry.loss));
        base::append_json_member(json_, "count", entry.count);
        base::append_json_member(json_, "first_source", entry.first_source);
        json_.push_back('}');
    }
    json_.push_back(']');
}

void JsonWriter::append_after_end()
{
    base::append_json_name(json_, "after_end");
    if (!after_end_) {
        json_.append("null");
        return;
    }
    json_.append("{\"offset\":").append(std::to_string(after_end_->offset));
    base::append_json_member(json_, "bytes", after_end_->bytes);
    json_.push_back('}');
}

void JsonWriter::after_end(const AfterEnd &rest)
{
    after_end_ = rest;
}

void JsonWriter::end_of_document()
{
    if (options_.lines) {
        json_.append("{\"type\":\"end\"");
        base::append_json_member(json_, "blocks", blocks_);
    } else {
        json_.append("\n]");
    }
    append_losses();
    append_after_end();
    json_.append("}\n");
    output_.write(json_);
    json_.clear();
}

// -------------------------------------------------------------------- format ----------

namespace {

Result<std::unique_ptr<Writer>> make_writer(Output &output, const DocumentInfo &info,
                                            const WriterOptions &options)
{
    return std::unique_ptr<Writer>(std::make_unique<JsonWriter>(output, info, options));
}

} // namespace

const Format json_format = {
    .name = "json",
    .extension = "json",
    .description = "JSON: everything that is known of the document",
    .options = WriterOption::page_breaks | WriterOption::headers | WriterOption::lines,
    .make_writer = make_writer,
    .make_event_writer = nullptr,
    .wants_offsets = true,
};

} // namespace pfsdoc::writers
