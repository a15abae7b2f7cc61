// The fixed headers of both families, the margin records and the ruler lines.
#include "tests/model/parts.h"

#include <algorithm>
#include <vector>

namespace tests::model {

namespace {

constexpr int32_t write_ruler_columns = 78;
constexpr uint8_t tab_mark = 0x0F;
constexpr uint8_t decimal_tab_mark = 0x10;
constexpr uint8_t no_tab = 0xFF;
constexpr uint8_t decimal_kind = '.';
constexpr int16_t terminator = -1;

// The bits that announce the four lines; the last line has three.
constexpr std::array<uint16_t, 4> line_pending_bits{0x02, 0x04, 0x08, 0x16};

int16_t less_one(int32_t value)
{
    return static_cast<int16_t>(value - 1);
}

void read_line_lengths(Model &model, const std::array<uint32_t, 4> &offsets)
{
    for (std::size_t line = 0; line < offsets.size(); ++line) {
        model.text.seek(offsets[line]);
        model.opened.hfLength[line] = static_cast<int16_t>(model.text.get());
        if (model.opened.hfLength[line] > 0) {
            model.saved.hfPending |= line_pending_bits[line];
        }
    }
}

void add_tab(Model &model, int32_t column, uint8_t kind)
{
    const auto slot = static_cast<std::size_t>(model.saved.tabCount++);
    model.saved.tabPos[slot] = static_cast<int16_t>(column);
    model.saved.tabKind[slot] = kind;
}

void end_tabs(Model &model)
{
    model.saved.tabPos[static_cast<std::size_t>(model.saved.tabCount)] = terminator;
}

// At equal columns the decimal stop comes first. The terminator overwrites the 78th stop.
void merge_tab_stops(Model &model, const std::vector<int16_t> &normal,
                     const std::vector<int16_t> &decimal)
{
    std::size_t i = 0;
    std::size_t j = 0;
    model.saved.tabCount = 0;
    while (model.saved.tabCount < write_ruler_columns &&
           (i < normal.size() || j < decimal.size())) {
        if (i == normal.size() || (j < decimal.size() && normal[i] >= decimal[j])) {
            add_tab(model, decimal[j++], decimal_kind);
        } else {
            add_tab(model, normal[i++], 0);
        }
    }
    if (model.saved.tabCount == write_ruler_columns) {
        --model.saved.tabCount;
    }
    end_tabs(model);
}

void read_write_ruler(Model &model)
{
    std::array<uint8_t, write_ruler_columns> kinds{};
    for (uint8_t &kind : kinds) {
        const int32_t mark = model.text.get();
        kind = mark == tab_mark ? 0 : mark == decimal_tab_mark ? decimal_kind : no_tab;
        model.text.get();
    }
    std::vector<int16_t> normal;
    std::vector<int16_t> decimal;
    for (const uint8_t kind : kinds) {
        const int16_t column = GetValue(model);
        if (kind == decimal_kind) {
            decimal.push_back(column);
        } else if (kind == 0) {
            normal.push_back(column);
        }
    }
    std::sort(normal.begin(), normal.end());
    std::sort(decimal.begin(), decimal.end());
    merge_tab_stops(model, normal, decimal);
}

uint8_t write_alignment(Model &model)
{
    const auto code = static_cast<uint8_t>(GetValue(model));
    return code == 0 || code == 2 ? code : 1;
}

uint8_t choice_alignment(Model &model)
{
    const int32_t letter = model.text.get();
    return letter == 'C' ? 0 : letter == 'R' ? 2 : 1;
}

void read_choice_styles(Model &model, uint8_t &attributes)
{
    for (int32_t i = 0; i < 2; ++i) {
        const int32_t letter = model.text.get();
        attributes |= letter == 'U' ? 0x01 : letter == 'B' ? 0x02 : 0;
    }
}

void read_byte_ruler(Model &model)
{
    for (int32_t column = 0; column < 99; ++column) {
        if ((model.text.get() & 0x01) != 0) {
            add_tab(model, column, 0);
        }
    }
}

void read_bit_ruler(Model &model)
{
    for (int32_t index = 0; index < 31; ++index) {
        const int32_t bits = model.text.get();
        for (int32_t bit = 0; bit < 8; ++bit) {
            if ((bits & (1 << bit)) != 0 && model.saved.tabCount < 99) {
                add_tab(model, 8 * index + bit, 0);
            }
        }
    }
}

} // namespace

int16_t GetValue(Model &model)
{
    const int32_t low = model.text.get();
    const int32_t high = model.text.get();
    return static_cast<int16_t>(low + 256 * high);
}

void PfsWriteHeaderInfo(Model &model)
{
    OpenedState &opened = model.opened;
    opened.headerAlign = 1;
    opened.footerAlign = 1;
    if (opened.formatType == 5) {
        model.saved.leftMargin = 9;
        model.saved.rightMargin = 69;
    } else {
        model.text.seek(10);
        model.saved.leftMargin = less_one(GetValue(model));
        model.saved.rightMargin = less_one(GetValue(model));
        GetValue(model);
        read_write_ruler(model);
    }
    read_line_lengths(model, {328, 402, 484, 558});
    if (opened.formatType == 1) {
        opened.headerAlign = 0;
        opened.footerAlign = 0;
        return;
    }
    model.text.seek(822);
    opened.headerAlign = write_alignment(model);
    opened.footerAlign = write_alignment(model);
    if (opened.formatType == 2 || opened.formatType == 3) {
        return;
    }
    model.text.seek(828);
    opened.headerAttrs = static_cast<uint8_t>(model.text.get());
    model.text.get();
    opened.footerAttrs = static_cast<uint8_t>(model.text.get());
}

void PfsChoiceHeaderInfo(Model &model)
{
    OpenedState &opened = model.opened;
    model.text.seek(0);
    model.saved.leftMargin = less_one(GetValue(model));
    model.saved.rightMargin = less_one(GetValue(model));
    read_line_lengths(model, {28, 110, 192, 274});
    model.text.seek(356);
    opened.headerAlign = choice_alignment(model);
    opened.footerAlign = choice_alignment(model);
    model.text.skip(1);
    read_choice_styles(model, opened.footerAttrs);
    model.text.skip(2);
    read_choice_styles(model, opened.headerAttrs);
    model.text.skip(1);
    model.saved.tabCount = 0;
    if (opened.fcVersion == 2 && opened.generation != '2') {
        read_byte_ruler(model);
    } else {
        read_bit_ruler(model);
    }
    end_tabs(model);
}

void MarginsFontRecord(Model &model)
{
    const int32_t length = model.text.get();
    const int32_t type = model.text.get();
    int32_t consumed = 3;
    if (type == 1) {
        model.saved.leftMargin = less_one(model.text.get());
        model.saved.rightMargin = less_one(model.text.get());
        consumed = 5;
    }
    for (; consumed < length; ++consumed) {
        model.text.get();
    }
}

// The end of the data ends the ruler.
void Fc3GetRuler(Model &model)
{
    model.text.skip(3);
    model.saved.tabCount = 0;
    model.saved.tabPos.fill(terminator);
    model.saved.tabKind.fill(0);
    uint8_t column = 0;
    int32_t byte = model.text.get();
    while (byte != carriage_return && byte != -1 && model.saved.tabCount < 100) {
        if (byte == 0xC2 || byte == 0xC5) {
            model.text.get();
        }
        switch (byte) {
        case 'T': add_tab(model, column, 0); break;
        case '[': model.saved.leftMargin = column; break;
        case ']': model.saved.rightMargin = column; break;
        default: break;
        }
        ++column;
        byte = model.text.get();
    }
    PutTabStops(model);
    report_margins(model);
}

} // namespace tests::model
