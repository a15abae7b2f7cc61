// A second implementation of the formats, to compare the module with.
//
// The model has the whole document in memory, without stream or buffer. It does each thing in the
// simplest way, looks ahead by reading ahead, and is slow where the module is fast.
// It shares no code with the module. What it yields is what a host can observe: the output
// calls, each with the position in the document where it is made and the state that the host
// would save there.
#pragma once

#include "tests/model/answers.h"
#include "tests/model/text.h"
#include "tests/support/notation.h"

#include <array>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <vector>

namespace tests::model {

// An output call and the position in the text where it was made.
struct Event {
    Call call;
    uint32_t position = 0; // at most the end: past it all positions are equal

    bool operator==(const Event &) const = default;
};
using Events = std::vector<Event>;

constexpr std::size_t tab_slots = 100;

// What a host can save and restore. Columns are 0-based.
struct SavedState {
    uint32_t seekPos = 0;
    int16_t leftMargin = 0;
    int16_t rightMargin = 0;
    int16_t pwReaderWord = 0;
    uint16_t hfPending = 0;
    int16_t tabCount = 0;
    uint8_t attrState = 0;
    uint8_t hfAttrState = 0;
    uint8_t skipFirstReturn = 0;
    uint8_t pwReaderFlag = 0;
    uint8_t openEndFlag = 0;
    uint8_t hfReaderFlag = 0;
    uint8_t fontValue = 0;
    std::array<int16_t, tab_slots> tabPos{};
    std::array<uint8_t, tab_slots> tabKind{};

    bool operator==(const SavedState &) const = default;
};

// What a host saves during its calls: an entry for each call at which it differs from the call
// before.
struct StateFrom {
    std::size_t call = 0; // counted as in Events
    SavedState state;
};
using States = std::vector<StateFrom>;

// What opening fixes for the document's life. Lines are header 1 and 2, footer 1 and 2.
struct OpenedState {
    uint8_t formatType = 0; // 1 to 5: Write family, 6: First Choice, 0: not recognised
    uint8_t generation = 0; // First Choice only: the byte after the magic
    uint16_t fcVersion = 0;
    std::array<uint32_t, 4> hfTextPos{};
    std::array<int16_t, 4> hfLength{};
    uint8_t footerAttrs = 0;
    uint8_t headerAttrs = 0;
    uint8_t headerAlign = 0;
    uint8_t footerAlign = 0;
};

struct Model {
    // The document must outlive the model.
    Model(const std::string &document, const Answers &host_answers)
        : text(document), answers(host_answers)
    {
    }

    // Makes an output call and returns the host's answer.
    int32_t report(int32_t id, std::initializer_list<int32_t> arguments);
    // Reports a paragraph end and returns whether the host wants to stop there.
    bool paragraph_end_stops();
    void forget_calls();

    Text text;
    SavedState saved;
    OpenedState opened;
    Answers answers;
    Events events;      // since they were last cleared
    States states;      // at these events
    bool ended = false; // the last read reported the document's end
};

// Whether the document is of a known kind.
bool VwStreamOpen(Model &model);
void VwStreamSection(Model &model);
void VwStreamRead(Model &model);

} // namespace tests::model
