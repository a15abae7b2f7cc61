#include "pfsdoc/explain.h"

#include "formats/text.h"
#include "lib/explain/choice3_walker.h"
#include "lib/explain/explain_header.h"
#include "lib/explain/professional_write_walker.h"
#include "lib/explain/wrapped_text_walker.h"
#include "lib/reading/read_document.h"
#include "vs_pfs.h"

#include <algorithm>
#include <array>

namespace pfsdoc {

namespace {

constexpr std::array<std::string_view, 15> span_kind_names = {
    "field",           "header_text", "record",  "line_type", "text",
    "attributed_text", "hidden_text", "indent",  "command",   "line_end",
    "page_break",      "end_mark",    "padding", "unused",    "cut"};
static_assert(span_kind_names.size() == static_cast<std::size_t>(SpanKind::cut) + 1);

// A whole file: the module's events before the text say where it begins and within which
// margins, the others explain it, and what it leaves is padding.
class FileExplainer final : public EventSink {
public:
    FileExplainer(ByteSource &source, DocumentKind kind, SpanSink &sink)
        : source_(source), builder_(source, sink), start_{kind}
    {
    }

    int32_t on_event(const Event &event, uint32_t offset) override;
    void finish();

private:
    void on_announcement(const Event &event, uint32_t position);
    void begin_body();

    ByteSource &source_;
    explaining::SpanBuilder builder_;
    explaining::BodyStart start_;
    bool spacing_follows_ = false;
    std::unique_ptr<explaining::BodyWalker> body_; // null before the text
};

int32_t FileExplainer::on_event(const Event &event, uint32_t offset)
{
    const uint32_t position = std::min(offset, builder_.size()); // it counts reads behind it
    if (body_ != nullptr) {
        body_->on_event(event, position);
    } else {
        on_announcement(event, position);
    }
    return 0;
}

int16_t column_of(int32_t twips)
{
    return static_cast<int16_t>(twips / VW_TWIPS_PER_COLUMN);
}

// The section's start is reported at the first byte of the text, and the announcements end with
// font and line spacing.
void FileExplainer::on_announcement(const Event &event, uint32_t position)
{
    if (std::get_if<SectionStart>(&event) != nullptr) {
        explaining::explain_header(builder_, start_.kind, position);
    } else if (const auto *margins = std::get_if<Margins>(&event)) {
        start_.left_margin = column_of(margins->left);
        start_.right_margin = column_of(margins->right);
    } else if (std::get_if<Font>(&event) != nullptr) {
        spacing_follows_ = true;
    } else if (spacing_follows_ && std::get_if<LineSpacing>(&event) != nullptr) {
        begin_body();
    }
}

void FileExplainer::begin_body()
{
    switch (start_.kind) {
    case DocumentKind::professional_write_1:
    case DocumentKind::professional_write_2:
        body_ = explaining::make_professional_write_walker(builder_);
        break;
    case DocumentKind::first_choice_3: body_ = explaining::make_choice3_walker(builder_); break;
    default: body_ = explaining::make_wrapped_text_walker(builder_, source_, start_);
    }
}

std::string_view padding_words(int32_t byte)
{
    switch (byte) {
    case 0: return "after the end: zeros";
    case formats::transfer_fill: return "after the end: fill of file transfers";
    default: return "after the end: left over";
    }
}

void FileExplainer::finish()
{
    builder_.separate();
    while (builder_.position() < builder_.size()) {
        builder_.claim(SpanKind::padding, 1, padding_words(builder_.byte(builder_.position())));
    }
    builder_.finish();
}

} // namespace

std::string_view span_kind_name(SpanKind kind)
{
    return span_kind_names[static_cast<std::size_t>(kind)];
}

Status explain(const Module &module, ByteSource &source, DocumentKind kind, SpanSink &sink)
{
    FileExplainer explainer(source, kind, sink);
    Status status =
        reading::read_document(module, source, kind, explainer, {reading::Offsets::wanted});
    if (reading::is_read_to_end(status)) {
        explainer.finish();
    }
    return status;
}

} // namespace pfsdoc
