// Character attributes: from the stored bytes to a set of five bits, and from the set to
// announcements. The host sees transitions only, save that each read call begins with the
// state of all five.
//
// The three orders of announcement differ from one another, and the host may see it: see
// "attribute orders" in docs/quirks.md. Test: tests/module/attributes_test.cpp.
#include "vs_pfs/formatting.h"

#include <array>

namespace vs_pfs {
namespace {

struct Attribute {
    uint8_t bit;
    int32_t code;
};

constexpr Attribute transition_order[] = {
    {attr_code_4, 4}, {attr_code_3, 3}, {attr_code_2, 2}, {attr_code_10, 10}, {attr_code_11, 11}};
constexpr Attribute announcement_order[] = {
    {attr_code_2, 2}, {attr_code_4, 4}, {attr_code_3, 3}, {attr_code_11, 11}, {attr_code_10, 10}};
// Header and footer lines know three attributes.
constexpr Attribute header_footer_order[] = {{attr_code_2, 2}, {attr_code_4, 4}, {attr_code_3, 3}};

// The first of a set of changes, and those that may follow it.
struct Transition {
    Attribute attribute;
    uint8_t rest;
};

constexpr Transition first_transition(unsigned changed)
{
    uint8_t rest = attr_all;
    for (const Attribute &attribute : transition_order) {
        rest = static_cast<uint8_t>(rest & ~attribute.bit);
        if ((changed & attribute.bit) != 0) {
            return {attribute, rest};
        }
    }
    return {};
}

// By the set of changes: found in one step, since the branches of a search would be foreseen
// wrongly at each change.
constexpr auto transitions = [] {
    std::array<Transition, attr_all + 1> table = {};
    for (unsigned changed = 0; changed < table.size(); ++changed) {
        table[changed] = first_transition(changed);
    }
    return table;
}();

} // namespace

int32_t PutAttributes(VwInstance *instance)
{
    for (const Attribute &attribute : announcement_order) {
        put_attribute(instance, attribute.code,
                      (instance->state.saved.attrState & attribute.bit) != 0);
    }
    return 0;
}

void change_attributes(uint8_t newSet, VwInstance *instance)
{
    uint8_t &current = instance->state.saved.attrState;
    uint8_t pending = attr_all;
    while (const int changed = (current ^ newSet) & pending) {
        const Transition &transition = transitions[static_cast<unsigned>(changed)];
        current ^= transition.attribute.bit;
        pending = transition.rest;
        put_attribute(instance, transition.attribute.code,
                      (current & transition.attribute.bit) != 0);
    }
}

void put_header_footer_attributes(VwInstance *instance, bool on)
{
    for (const Attribute &attribute : header_footer_order) {
        if ((instance->state.saved.hfAttrState & attribute.bit) != 0) {
            put_attribute(instance, attribute.code, on);
        }
    }
}

int32_t TurnOffAttr(VwInstance *instance)
{
    put_header_footer_attributes(instance, false);
    return 0;
}

} // namespace vs_pfs
