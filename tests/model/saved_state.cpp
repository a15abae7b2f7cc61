#include "tests/model/saved_state.h"

#include <algorithm>
#include <cstring>

namespace tests::model {

namespace {

constexpr std::size_t tab_pos_offset = 22;
constexpr std::size_t tab_kind_offset = 222;

template <typename T> T value_at(const SavedBytes &bytes, std::size_t offset)
{
    T value{};
    std::memcpy(&value, bytes.data() + offset, sizeof value);
    return value;
}

void compare(std::string &differences, const char *name, int64_t model, int64_t module_value)
{
    if (model != module_value) {
        differences += std::string(name) + " is " + std::to_string(module_value) + " instead of " +
                       std::to_string(model) + '\n';
    }
}

void compare_tabs(std::string &differences, const SavedState &model, const SavedState &module_state)
{
    compare(differences, "tabCount", model.tabCount, module_state.tabCount);
    for (std::size_t i = 0; i < tab_slots && static_cast<int32_t>(i) <= model.tabCount; ++i) {
        compare(differences, "tabPos", model.tabPos[i], module_state.tabPos[i]);
    }
    for (std::size_t i = 0; i < tab_slots && static_cast<int32_t>(i) < model.tabCount; ++i) {
        compare(differences, "tabKind", model.tabKind[i], module_state.tabKind[i]);
    }
}

} // namespace

SavedState fields_of(const SavedBytes &bytes)
{
    SavedState state;
    state.seekPos = value_at<uint32_t>(bytes, 0);
    state.leftMargin = value_at<int16_t>(bytes, 4);
    state.rightMargin = value_at<int16_t>(bytes, 6);
    state.pwReaderWord = value_at<int16_t>(bytes, 8);
    state.hfPending = value_at<uint16_t>(bytes, 10);
    state.tabCount = value_at<int16_t>(bytes, 12);
    state.attrState = bytes[14];
    state.hfAttrState = bytes[15];
    state.skipFirstReturn = bytes[16];
    state.pwReaderFlag = bytes[17];
    state.openEndFlag = bytes[18];
    state.hfReaderFlag = bytes[19];
    state.fontValue = bytes[20];
    std::memcpy(state.tabPos.data(), bytes.data() + tab_pos_offset, sizeof state.tabPos);
    std::memcpy(state.tabKind.data(), bytes.data() + tab_kind_offset, sizeof state.tabKind);
    return state;
}

std::string difference_of(const SavedState &model, const SavedState &module_state,
                          uint32_t document_size)
{
    std::string differences;
    compare(differences, "seekPos", std::min(model.seekPos, document_size),
            std::min(module_state.seekPos, document_size));
    compare(differences, "leftMargin", model.leftMargin, module_state.leftMargin);
    compare(differences, "rightMargin", model.rightMargin, module_state.rightMargin);
    compare(differences, "pwReaderWord", model.pwReaderWord, module_state.pwReaderWord);
    compare(differences, "hfPending", model.hfPending, module_state.hfPending);
    compare(differences, "attrState", model.attrState, module_state.attrState);
    compare(differences, "hfAttrState", model.hfAttrState, module_state.hfAttrState);
    compare(differences, "skipFirstReturn", model.skipFirstReturn, module_state.skipFirstReturn);
    compare(differences, "pwReaderFlag", model.pwReaderFlag, module_state.pwReaderFlag);
    compare(differences, "openEndFlag", model.openEndFlag, module_state.openEndFlag);
    compare(differences, "hfReaderFlag", model.hfReaderFlag, module_state.hfReaderFlag);
    compare(differences, "fontValue", model.fontValue, module_state.fontValue);
    compare_tabs(differences, model, module_state);
    return differences;
}

} // namespace tests::model
