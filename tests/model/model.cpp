#include "tests/model/model.h"

#include "tests/model/parts.h"

namespace tests::model {

int32_t Model::report(int32_t id, std::initializer_list<int32_t> arguments)
{
    Event event{{id, static_cast<int32_t>(arguments.size()), {}}, text.clamped_position()};
    std::size_t i = 0;
    for (const int32_t argument : arguments) {
        event.call.arguments[i++] = argument;
    }
    if (states.empty() || states.back().state != saved) {
        states.push_back({events.size(), saved});
    }
    events.push_back(event);
    const bool paragraph_end = id == VW_SO_BREAK && event.call.arguments[0] == VW_BREAK_PARAGRAPH;
    return paragraph_end ? answers.next() : 1;
}

bool Model::paragraph_end_stops()
{
    return report(VW_SO_BREAK, {VW_BREAK_PARAGRAPH, 0}) == 1;
}

void Model::forget_calls()
{
    events.clear();
    states.clear();
}

void VwStreamSection(Model &model)
{
    model.report(VW_SO_SECTION_START, {0});
}

namespace {

void read_line(Model &model)
{
    switch (model.opened.formatType) {
    case 1:
    case 2:
    case 3: read_pfs_line(model); break;
    case 4:
    case 5: read_pfs_12_line(model); break;
    case 6:
        if (model.opened.fcVersion == 3) {
            read_choice3_line(model);
        } else {
            read_choice_line(model);
        }
        break;
    default: break;
    }
}

} // namespace

// If the data stop without the end byte, the document ends as if it were there.
void VwStreamRead(Model &model)
{
    PutTabStops(model);
    try {
        read_line(model);
    } catch (const EndOfDocument &) {
        model.report(VW_SO_BREAK, {VW_BREAK_END_OF_DOCUMENT, 0});
    }
    const Call &last = model.events.back().call;
    model.ended = last.id == VW_SO_BREAK && last.arguments[0] == VW_BREAK_END_OF_DOCUMENT;
}

void report_margins(Model &model)
{
    model.report(VW_SO_MARGINS, {twips(model.saved.leftMargin), twips(model.saved.rightMargin)});
}

bool report_pending_headers(Model &model)
{
    while (model.saved.hfPending != 0) {
        report_no_indents(model);
        model.report(VW_SO_ALIGNMENT, {VW_ALIGN_LEFT});
        if (!ProcHeaderFooter(model)) {
            return false;
        }
    }
    return true;
}

void report_line_defaults(Model &model)
{
    report_no_indents(model);
    model.report(VW_SO_ALIGNMENT, {VW_ALIGN_LEFT});
    model.report(VW_SO_FONT, {model.saved.fontValue});
    report_single_spacing(model);
}

void report_indents(Model &model, int16_t left, int16_t first_line)
{
    model.report(VW_SO_INDENTS, {twips(left), 0, twips(first_line)});
}

void report_no_indents(Model &model)
{
    model.report(VW_SO_INDENTS, {0, 0, 0});
}

void report_single_spacing(Model &model)
{
    model.report(VW_SO_LINE_SPACING, {1, VW_SINGLE_SPACING, 0, 0});
}

void report_double_spacing(Model &model)
{
    model.report(VW_SO_LINE_SPACING, {1, VW_DOUBLE_SPACING, 0, 0});
}

void report_character(Model &model, uint8_t character)
{
    model.report(VW_SO_CHARACTER, {character});
}

void report_leading_spaces(Model &model, int16_t leading_spaces)
{
    for (int32_t i = 0; i < leading_spaces; ++i) {
        model.report(VW_SO_SPECIAL_CHARACTER, {space, special_type});
    }
}

} // namespace tests::model
