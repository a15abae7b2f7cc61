// Recognising a document, and the step from the file's start to the first byte of its text.
#include "tests/model/parts.h"

#include <string_view>

namespace tests::model {

namespace {

constexpr uint32_t choice_magic_offset = 9;
constexpr uint32_t choice_text_offset = 512;
constexpr uint32_t signature_offset = 641;
constexpr int32_t unread_between = 2; // bytes between the signature and the variant
constexpr uint32_t end_flag_offset = 836;
constexpr uint32_t write_text_offset = 1024;
constexpr uint8_t saved_font = 24;

std::string read_bytes(Model &model, int32_t count)
{
    std::string bytes;
    for (int32_t i = 0; i < count; ++i) {
        bytes += static_cast<char>(model.text.get());
    }
    return bytes;
}

uint8_t write_format_type(std::string_view signature, char variant)
{
    if (signature == "WRD PC" || signature == "TYPE 2") {
        return variant == '1' ? 1 : variant == '2' ? 2 : 0;
    }
    return signature == "IBM   " ? 3 : signature == "TYPE 3" ? 4 : signature == "TYPE 4" ? 5 : 0;
}

void open_choice(Model &model)
{
    PfsChoiceHeaderInfo(model);
    model.text.seek(choice_text_offset);
    model.saved.seekPos = choice_text_offset;
    model.saved.skipFirstReturn = 0;
    model.opened.hfTextPos = {29, 111, 193, 275};
}

void skip_to_form_feed(Model &model)
{
    model.text.seek(write_text_offset);
    for (;;) {
        const int32_t byte = model.text.get();
        if (byte == form_feed || byte == -1) {
            return;
        }
    }
}

void open_write(Model &model)
{
    PfsWriteHeaderInfo(model);
    if (model.opened.formatType >= 4) {
        model.text.seek(end_flag_offset);
        model.saved.openEndFlag = model.text.get() != 0 ? 1 : 0;
    }
    model.opened.hfTextPos = {329, 403, 485, 559};
    skip_to_form_feed(model);
    int32_t byte = model.text.get();
    while (byte == record_mark) {
        MarginsFontRecord(model);
        byte = model.text.get();
    }
    if (byte == -1) {
        model.saved.openEndFlag = 1;
    } else {
        model.text.put_back();
    }
}

} // namespace

bool PfsGetVersion(Model &model)
{
    model.text.seek(choice_magic_offset);
    const std::string magic = read_bytes(model, 9);
    model.opened.generation = static_cast<uint8_t>(model.text.get());
    model.opened.fcVersion = model.opened.generation == '3' ? 3 : 2;
    if (magic == "GERBILDOC") {
        model.opened.formatType = 6;
    } else {
        model.text.seek(signature_offset);
        const std::string signature = read_bytes(model, 6);
        model.text.skip(unread_between);
        const std::string variant = read_bytes(model, 4);
        model.opened.formatType = write_format_type(signature, variant.front());
    }
    if (model.opened.formatType == 0) {
        return false;
    }
    model.text.seek(0);
    return true;
}

bool VwStreamOpen(Model &model)
{
    model.saved = SavedState{};
    model.opened = OpenedState{};
    model.saved.skipFirstReturn = 1;
    model.saved.fontValue = saved_font;
    if (!PfsGetVersion(model)) {
        return false;
    }
    if (model.opened.formatType == 6) {
        open_choice(model);
    } else {
        open_write(model);
    }
    return true;
}

} // namespace tests::model
