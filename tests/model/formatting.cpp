// What all line readers share: attributes, tab stops, headers and footers.
#include "tests/model/parts.h"

#include <algorithm>

namespace tests::model {

namespace {

struct Attribute {
    uint8_t bit;
    int32_t code;
};
constexpr Attribute underline{0x01, 4};
constexpr Attribute bold{0x02, 2};
constexpr Attribute italic{0x04, 3};
constexpr Attribute superscript{0x08, 11};
constexpr Attribute subscript{0x10, 10};

void copy_bit(uint8_t from, uint8_t mask, uint8_t &target, const Attribute &attribute)
{
    if ((from & mask) != 0) {
        target |= attribute.bit;
    }
}

void report_attribute(Model &model, const Attribute &attribute, bool on)
{
    model.report(VW_SO_ATTRIBUTE, {attribute.code, on ? 1 : 0});
}

constexpr uint16_t close_owed = 0x01;
constexpr uint16_t header_1 = 0x02;
constexpr uint16_t header_2 = 0x04;
constexpr uint16_t footer_1 = 0x08;
constexpr uint16_t footer_2 = 0x16; // three bits, two of which are the header lines'
constexpr int32_t header_block = 1;
constexpr int32_t footer_block = 2;

struct Line {
    std::size_t slot;
    bool second; // continues the block that the first line has opened
};

Line next_line(uint16_t pending)
{
    if ((pending & header_1) != 0) {
        return {0, false};
    }
    if ((pending & header_2) != 0) {
        return {1, true};
    }
    if ((pending & footer_1) != 0) {
        return {2, false};
    }
    return {3, true};
}

void open_block(Model &model, const Line &line)
{
    const bool header = line.slot < 2;
    model.saved.hfAttrState = header ? model.opened.headerAttrs : model.opened.footerAttrs;
    if (line.second && model.saved.hfReaderFlag != 0) {
        return;
    }
    if (!line.second) {
        model.saved.hfReaderFlag = 1;
    }
    model.report(VW_SO_BREAK, {VW_BREAK_BLOCK_OPEN, 0});
    model.report(VW_SO_HEADER_FOOTER, {header ? header_block : footer_block, 3});
}

void report_line(Model &model, const Line &line)
{
    model.text.seek(model.opened.hfTextPos[line.slot]);
    for (const Attribute &attribute : {bold, underline, italic}) {
        if ((model.saved.hfAttrState & attribute.bit) != 0) {
            report_attribute(model, attribute, true);
        }
    }
    switch (line.slot < 2 ? model.opened.headerAlign : model.opened.footerAlign) {
    case 0: model.report(VW_SO_ALIGNMENT, {VW_ALIGN_CENTRE}); break;
    case 2: model.report(VW_SO_ALIGNMENT, {VW_ALIGN_RIGHT}); break;
    default: break;
    }
    for (int32_t i = 0; i < model.opened.hfLength[line.slot]; ++i) {
        const int32_t byte = model.text.get();
        model.report(VW_SO_CHARACTER, {byte});
    }
}

void close_block(Model &model)
{
    TurnOffAttr(model);
    model.report(VW_SO_BREAK, {VW_BREAK_BLOCK_CLOSE, 0});
}

// If the host stops here, the block's end is still to be reported.
bool end_block(Model &model)
{
    model.saved.hfReaderFlag = 0;
    if (model.paragraph_end_stops()) {
        model.saved.hfPending |= close_owed;
        return false;
    }
    close_block(model);
    return true;
}

void clear(uint16_t &pending, uint16_t bits)
{
    pending = static_cast<uint16_t>(pending & ~bits);
}

bool end_line(Model &model)
{
    uint16_t &pending = model.saved.hfPending;
    if ((pending & header_1) != 0) {
        clear(pending, header_1);
        return (pending & header_2) == 0 ? end_block(model) : !model.paragraph_end_stops();
    }
    if ((pending & header_2) != 0) {
        clear(pending, header_2);
        return end_block(model);
    }
    if ((pending & footer_1) != 0) {
        clear(pending, footer_1);
        return (pending & footer_2) == 0 ? end_block(model) : !model.paragraph_end_stops();
    }
    if ((pending & footer_2) == 0) {
        pending = 0; // only unknown bits, which no line ever clears
        return true;
    }
    clear(pending, footer_2);
    return end_block(model);
}

} // namespace

void SetAttr(uint8_t first, uint8_t second, PairForm form, uint8_t &target)
{
    copy_bit(first, 0x01, target, underline);
    copy_bit(first, 0x04, target, italic);
    copy_bit(first, 0x02, target, bold);
    if (form == PairForm::write) {
        copy_bit(first, 0x08, target, superscript);
        copy_bit(first, 0x10, target, subscript);
    } else {
        copy_bit(second, 0x02, target, subscript);
        copy_bit(second, 0x04, target, superscript);
    }
}

void check_attributes(Model &model, uint8_t new_set)
{
    uint8_t &current = model.saved.attrState;
    for (const Attribute &attribute : {underline, italic, bold, subscript, superscript}) {
        const bool was_on = (current & attribute.bit) != 0;
        const bool is_on = (new_set & attribute.bit) != 0;
        if (was_on != is_on) {
            current = static_cast<uint8_t>(current ^ attribute.bit);
            report_attribute(model, attribute, is_on);
        }
    }
}

void PutAttributes(Model &model)
{
    for (const Attribute &attribute : {bold, underline, italic, superscript, subscript}) {
        report_attribute(model, attribute, (model.saved.attrState & attribute.bit) != 0);
    }
}

void TurnOffAttr(Model &model)
{
    for (const Attribute &attribute : {bold, underline, italic}) {
        if ((model.saved.hfAttrState & attribute.bit) != 0) {
            report_attribute(model, attribute, false);
        }
    }
}

void PutTabStops(Model &model)
{
    constexpr int32_t most_reported = 30;
    model.report(VW_SO_TAB_STOPS_BEGIN, {});
    for (int32_t i = 0; i < most_reported && i < model.saved.tabCount; ++i) {
        const auto slot = static_cast<std::size_t>(i);
        const int32_t position = twips(model.saved.tabPos[slot]);
        if (model.saved.tabKind[slot] == '.') {
            model.report(VW_SO_TAB_STOP, {VW_TAB_DECIMAL, '.', 0, position});
        } else {
            model.report(VW_SO_TAB_STOP, {VW_TAB_LEFT, 0, 0, position});
        }
    }
    model.report(VW_SO_TAB_STOPS_END, {});
}

bool ProcHeaderFooter(Model &model)
{
    const uint32_t body = model.text.tell();
    if ((model.saved.hfPending & close_owed) != 0) {
        TurnOffAttr(model);
        clear(model.saved.hfPending, close_owed);
        model.report(VW_SO_BREAK, {VW_BREAK_BLOCK_CLOSE, 0});
        return true;
    }
    const Line line = next_line(model.saved.hfPending);
    open_block(model, line);
    report_line(model, line);
    model.text.seek(body);
    model.saved.seekPos = body;
    return end_line(model);
}

} // namespace tests::model
