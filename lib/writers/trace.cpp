#include "lib/writers/trace.h"

#include "lib/base/printable.h"
#include "lib/writers/formats.h"
#include "pfsdoc/attribute_names.h"
#include "vs_pfs.h"

#include <cstdio>
#include <initializer_list>
#include <optional>

namespace pfsdoc::writers {

namespace {

// What an argument is whenever the module calls; anything else is spelled out.
constexpr int32_t special_type = 7;
constexpr int32_t page_break_type = 4;
constexpr int32_t header_footer_second = 3;
constexpr int32_t header_block = 1;
constexpr int32_t footer_block = 2;
constexpr int32_t spacing_first = 1;
constexpr uint16_t decimal_point = '.';

bool is_byte(int32_t value)
{
    return value >= 0 && value <= UINT8_MAX;
}

bool is_visible(int32_t byte)
{
    return byte > ' ' && byte < 0x7F;
}

std::string words(std::string text, std::initializer_list<int64_t> numbers)
{
    for (const int64_t number : numbers) {
        text.append(" ").append(std::to_string(number));
    }
    return text;
}

std::string byte_words(std::string text, int32_t value)
{
    if (!is_byte(value)) {
        return words(text + " value", {value});
    }
    text.append(" ").append(base::hex_byte(static_cast<unsigned>(value)));
    if (is_visible(value)) {
        text.append(" ").append(1, static_cast<char>(value));
    }
    return text;
}

std::string quoted(int32_t byte)
{
    const char character = static_cast<char>(byte);
    if (character == '"' || character == '\\') {
        return {'\\', character};
    }
    return is_visible(byte) || byte == ' ' ? std::string(1, character)
                                           : "\\x" + base::hex_byte(static_cast<unsigned>(byte));
}

struct EventText {
    std::string operator()(const Character &e) const
    {
        return byte_words("char", e.byte);
    }
    std::string operator()(const SpecialCharacter &e) const
    {
        const std::string text = byte_words("special", e.byte);
        return e.type == special_type ? text : words(text + " type", {e.type});
    }
    std::string operator()(const PageBreak &e) const
    {
        const bool is_usual = e == PageBreak{page_break_type, 0};
        return is_usual ? "page-break" : words("page-break", {e.type, e.second});
    }
    std::string operator()(const AttributeChange &e) const
    {
        std::string text = words("attribute", {e.code});
        const std::string_view name = attribute_name(e.code);
        text.append(name.empty() ? "" : " ").append(name);
        if (e.on != 0 && e.on != 1) {
            return words(text, {e.on});
        }
        return text.append(e.on == 1 ? " on" : " off");
    }
    std::string operator()(const Font &e) const
    {
        return words("font", {e.value});
    }
    std::string operator()(const Alignment &e) const
    {
        switch (e.value) {
        case VW_ALIGN_LEFT: return "alignment left";
        case VW_ALIGN_RIGHT: return "alignment right";
        case VW_ALIGN_CENTRE: return "alignment centre";
        default: return words("alignment", {e.value});
        }
    }
    std::string operator()(const Indents &e) const
    {
        return words("indents", {e.left, e.right, e.first_line});
    }
    std::string operator()(const TabStopsBegin &) const
    {
        return "tabs";
    }
    std::string operator()(const TabStopsEnd &) const
    {
        return "tabs end";
    }
    std::string operator()(const TabStop &e) const
    {
        if (e == TabStop{VW_TAB_LEFT, 0, 0, e.position}) {
            return words("tab left", {e.position});
        }
        if (e == TabStop{VW_TAB_DECIMAL, decimal_point, 0, e.position}) {
            return words("tab decimal", {e.position});
        }
        const std::string text =
            words("tab kind", {e.kind}) + words(" alignment", {e.alignment_character});
        return text + words(" leader", {e.leader_character}) + words(" at", {e.position});
    }
    std::string operator()(const Margins &e) const
    {
        return words("margins", {e.left, e.right});
    }
    std::string operator()(const HeaderFooter &e) const
    {
        switch (e.second == header_footer_second ? e.kind : 0) {
        case header_block: return "block header";
        case footer_block: return "block footer";
        default: return words("block kind", {e.kind, e.second});
        }
    }
    std::string operator()(const Break &e) const
    {
        switch (e.second == 0 ? e.code : 0) {
        case VW_BREAK_PARAGRAPH: return "break paragraph";
        case VW_BREAK_END_OF_DOCUMENT: return "break end";
        case VW_BREAK_BLOCK_OPEN: return "block open";
        case VW_BREAK_BLOCK_CLOSE: return "block close";
        default: return words("break", {e.code, e.second});
        }
    }
    std::string operator()(const SectionStart &e) const
    {
        return words("section", {e.value});
    }
    std::string operator()(const LineSpacing &e) const
    {
        const bool is_usual = e == LineSpacing{spacing_first, e.twips, 0, 0};
        return is_usual ? words("spacing", {e.twips})
                        : words("spacing", {e.first, e.twips, e.third, e.fourth});
    }
};

bool has_break_code(const Event &event, VwBreak code)
{
    const auto *found = std::get_if<Break>(&event);
    return found != nullptr && found->code == code;
}

bool opens_level(const Event &event)
{
    return std::holds_alternative<TabStopsBegin>(event) ||
           has_break_code(event, VW_BREAK_BLOCK_OPEN);
}

bool closes_level(const Event &event)
{
    return std::holds_alternative<TabStopsEnd>(event) ||
           has_break_code(event, VW_BREAK_BLOCK_CLOSE);
}

// The byte of an event that can be part of a folded run.
std::optional<int32_t> folded_byte(const Event &event)
{
    const auto *character = std::get_if<Character>(&event);
    const auto *special = std::get_if<SpecialCharacter>(&event);
    if (character != nullptr && is_byte(character->byte)) {
        return character->byte;
    }
    if (special != nullptr && special->type == special_type && is_byte(special->byte)) {
        return special->byte;
    }
    return std::nullopt;
}

} // namespace

std::string trace_text(const Event &event)
{
    return std::visit(EventText{}, event);
}

void TraceWriter::begin_line(uint32_t offset)
{
    if (options_.offsets) {
        char column[16];
        const int size = std::snprintf(column, sizeof column, "%8u ", offset);
        output_.write({column, static_cast<std::size_t>(size)});
    }
    for (unsigned level = 0; level < depth_; ++level) {
        output_.write("  ");
    }
}

void TraceWriter::end_run()
{
    if (run_ != Run::none) {
        output_.write("\"\n");
        run_ = Run::none;
    }
}

// Whether the event went into a run.
bool TraceWriter::fold(const Event &event, uint32_t offset)
{
    const std::optional<int32_t> byte = folded_byte(event);
    const Run run = std::holds_alternative<Character>(event) ? Run::text : Run::special;
    if (!byte || run != run_) {
        end_run();
    }
    if (!byte) {
        return false;
    }
    if (run_ == Run::none) {
        begin_line(offset);
        output_.write(run == Run::text ? "text \"" : "special \"");
        run_ = run;
    }
    output_.write(quoted(*byte));
    return true;
}

int32_t TraceWriter::on_event(const Event &event, uint32_t offset)
{
    if (options_.fold && fold(event, offset)) {
        return 0;
    }
    if (closes_level(event) && depth_ > 0) {
        --depth_;
    }
    begin_line(offset);
    output_.write(trace_text(event));
    output_.write("\n");
    if (opens_level(event)) {
        ++depth_;
    }
    return 0;
}

void TraceWriter::finish()
{
    end_run();
}

namespace {

std::unique_ptr<EventWriter> make_event_writer(Output &output, const WriterOptions &options)
{
    return std::make_unique<TraceWriter>(output, TraceOptions{options.offsets, options.fold});
}

} // namespace

const Format trace_format = {
    .name = "trace",
    .extension = "trace",
    .description = "what the module reports, one event a line",
    .options = WriterOption::offsets | WriterOption::fold,
    .make_writer = nullptr,
    .make_event_writer = make_event_writer,
    .wants_offsets = false,
};

} // namespace pfsdoc::writers
