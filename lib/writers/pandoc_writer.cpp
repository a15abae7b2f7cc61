#include "lib/writers/pandoc_writer.h"

#include "lib/base/json_text.h"
#include "lib/base/printable.h"
#include "lib/page/page_geometry.h"
#include "lib/page/paragraph_pieces.h"
#include "lib/writers/formats.h"

#include <algorithm>
#include <array>

namespace pfsdoc::writers {

namespace {

constexpr std::array nesting_order = {AttributeCode::bold, AttributeCode::italic,
                                      AttributeCode::underline, AttributeCode::superscript,
                                      AttributeCode::subscript};

constexpr std::string_view document_begin =
    R"({"pandoc-api-version":[1,22,2,1],"meta":{"title":{"t":"MetaInlines","c":[)";
constexpr std::string_view blocks_begin = "]}},\"blocks\":[\n";
constexpr std::string_view document_end = "]}";
constexpr std::string_view block_separator = ",";

constexpr std::string_view space = R"({"t":"Space"})";
constexpr std::string_view str_begin = R"({"t":"Str","c":)";
constexpr std::string_view str_end = "}";
constexpr std::string_view para_begin = R"({"t":"Para","c":[)";
constexpr std::string_view para_end = "]}";
constexpr std::string_view attribute_end = "]}";
constexpr std::string_view div_end = "]]}";
constexpr std::string_view page_break_div =
    R"({"t":"Div","c":[["",["page-break"],[]],[{"t":"HorizontalRule"}]]})";

// Bytes escaped at once.
constexpr std::size_t stretch_size = 4096;

constexpr std::string_view begin_of(AttributeCode code)
{
    switch (code) {
    case AttributeCode::bold: return R"({"t":"Strong","c":[)";
    case AttributeCode::italic: return R"({"t":"Emph","c":[)";
    case AttributeCode::underline: return R"({"t":"Underline","c":[)";
    case AttributeCode::superscript: return R"({"t":"Superscript","c":[)";
    case AttributeCode::subscript: break;
    }
    return R"({"t":"Subscript","c":[)";
}

void append_str(std::string &json, std::string_view utf8)
{
    json.append(str_begin);
    base::append_json_string(json, utf8);
    json.append(str_end);
}

// A title's words, with what stands between them.
void append_inlines(std::string &json, std::string_view title)
{
    bool is_first = true;
    while (true) {
        title.remove_prefix(std::min(title.find_first_not_of(' '), title.size()));
        if (title.empty()) {
            return;
        }
        const std::string_view word = title.substr(0, title.find(' '));
        json.append(is_first ? std::string_view() : ",{\"t\":\"Space\"},");
        append_str(json, word);
        title.remove_prefix(word.size());
        is_first = false;
    }
}

// What an alignment adds to a Div: its class, and what makes it visible.
struct AlignmentNames {
    std::string_view css_class;
    std::string_view style;
    std::string_view css;
};

constexpr AlignmentNames names_of(page::LineAlignment alignment)
{
    switch (alignment) {
    case page::LineAlignment::centre:
        return {R"("center")", R"(["custom-style","Center"])", R"(["style","text-align: center"])"};
    case page::LineAlignment::right:
        return {R"("right")", R"(["custom-style","Right"])", R"(["style","text-align: right"])"};
    case page::LineAlignment::left: break;
    }
    return {};
}

} // namespace

PandocWriter::PandocWriter(Output &output, const DocumentInfo &info, const WriterOptions &options)
    : FlowWriter(output, options,
                 {page::AttributeNesting(nesting_order).known(), true, block_separator}),
      nesting_(nesting_order)
{
    json_.append(document_begin);
    append_inlines(json_, base::printable(info.title));
    json_.append(blocks_begin);
    out().utf8(json_);
}

void PandocWriter::write_paragraph(const Paragraph &paragraph)
{
    alignment_ = page::line_alignment(paragraph);
    page::split_into_words(paragraph, options(), supported(), *this);
    if (!paragraph_open_ && !block() && page::is_text_only(paragraph)) {
        begin_paragraph();
    }
    end_paragraph();
}

void PandocWriter::write_page_break()
{
    out().utf8(page_break_div);
    out().line_end();
}

void PandocWriter::write_end()
{
    out().utf8(document_end);
}

void PandocWriter::page_break_in_text()
{
    end_paragraph();
    if (!block()) {
        begin_block();
        write_page_break();
    }
}

// ---------------------------------------------------------------- paragraphs ----------

void PandocWriter::begin_paragraph()
{
    begin_block();
    json_.clear();
    in_div_ = begin_div();
    json_.append(para_begin);
    out().utf8(json_);
    paragraph_open_ = true;
    has_elder_ = false;
}

// Whether the paragraph needs one: {"t":"Div","c":[["",[classes],[attributes]],[blocks]]}.
bool PandocWriter::begin_div()
{
    const AlignmentNames names = names_of(alignment_);
    std::string classes;
    std::string attributes;
    const auto add = [](std::string &list, std::string_view item) {
        list.append(list.empty() || item.empty() ? "" : ",").append(item);
    };
    if (block()) {
        add(classes, block() == BlockKind::header ? R"("header")" : R"("footer")");
    }
    add(classes, names.css_class);
    add(attributes, names.style);
    add(attributes, names.css);
    if (classes.empty()) {
        return false;
    }
    json_.append(R"({"t":"Div","c":[["",[)").append(classes).append("],[");
    json_.append(attributes).append("]],[");
    return true;
}

void PandocWriter::end_paragraph()
{
    if (!paragraph_open_) {
        return;
    }
    json_.clear();
    close_unwanted(0);
    json_.append(para_end).append(in_div_ ? div_end : std::string_view());
    out().utf8(json_);
    out().line_end();
    paragraph_open_ = false;
}

// ------------------------------------------------------------------- inlines ----------

void PandocWriter::word(const page::Word &word)
{
    if (!paragraph_open_) {
        begin_paragraph();
    }
    for (std::size_t part = 0; part < word.parts.size(); ++part) {
        json_.clear();
        close_unwanted(word.parts[part].attributes);
        open_wanted(word.parts[part].attributes);
        begin_inline();
        write_str(word.part_text(part));
    }
}

// Behind what is held, a stretch at a time.
void PandocWriter::write_str(std::string_view utf8)
{
    json_.append(str_begin).push_back('"');
    while (!utf8.empty()) {
        const std::string_view stretch = utf8.substr(0, stretch_size);
        base::append_json_characters(json_, stretch);
        out().utf8(json_);
        json_.clear();
        utf8.remove_prefix(stretch.size());
    }
    json_.append("\"").append(str_end);
    out().utf8(json_);
}

void PandocWriter::blanks(std::size_t, AttributeSet attributes)
{
    json_.clear();
    close_unwanted(attributes);
    begin_inline();
    json_.append(space);
    out().utf8(json_);
}

void PandocWriter::begin_inline()
{
    if (has_elder_) {
        json_.push_back(',');
    }
    has_elder_ = true;
}

void PandocWriter::close_unwanted(AttributeSet wanted)
{
    nesting_.close_unwanted(wanted, [this](AttributeCode) {
        json_.append(attribute_end);
        has_elder_ = true;
    });
}

void PandocWriter::open_wanted(AttributeSet wanted)
{
    nesting_.open_wanted(wanted, [this](AttributeCode code) {
        begin_inline();
        json_.append(begin_of(code));
        has_elder_ = false;
    });
}

// ------------------------------------------------------------------------ format ------

namespace {

Result<std::unique_ptr<Writer>> make_writer(Output &output, const DocumentInfo &info,
                                            const WriterOptions &options)
{
    return std::unique_ptr<Writer>(std::make_unique<PandocWriter>(output, info, options));
}

} // namespace

const Format pandoc_format = {
    .name = "pandoc",
    .extension = "ast.json",
    .description = "pandoc's document tree, to be converted on: pandoc -f json",
    .options = WriterOption::page_breaks | WriterOption::headers | WriterOption::commands,
    .make_writer = make_writer,
    .make_event_writer = nullptr,
    .wants_offsets = false,
};

} // namespace pfsdoc::writers
