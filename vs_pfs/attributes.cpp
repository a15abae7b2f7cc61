// Character attributes: from the stored bytes to a set of five bits, and from the set to
// announcements. The host sees transitions only, save that each read call begins with the
// state of all five.
//
// The three orders of announcement differ from one another, and the host may see it: see
// "attribute orders" in docs/quirks.md. Test: tests/module/attributes_test.cpp.
#include "formatting.h"

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

constexpr uint8_t attributes_of_first_byte = attr_code_4 | attr_code_2 | attr_code_3;
constexpr uint8_t attributes_of_plain_byte = attributes_of_first_byte | attr_code_11 | attr_code_10;
// The second byte of a pair crosses over: its lower bit is the set's higher one.
constexpr uint8_t second_byte_code_10 = 0x02;
constexpr uint8_t second_byte_code_11 = 0x04;

} // namespace

int32_t SetAttr(uint8_t first, uint8_t second, uint8_t pairForm, uint8_t *target, VwInstance *)
{
    if (pairForm == attr_form_plain) {
        *target |= first & attributes_of_plain_byte;
        return 0;
    }
    *target |= first & attributes_of_first_byte;
    if ((second & second_byte_code_10) != 0) {
        *target |= attr_code_10;
    }
    if ((second & second_byte_code_11) != 0) {
        *target |= attr_code_11;
    }
    return 0;
}

int32_t PutAttributes(VwInstance *instance)
{
    for (const Attribute &attribute : announcement_order) {
        put_attribute(instance, attribute.code,
                      (instance->state.saved.attrState & attribute.bit) != 0);
    }
    return 0;
}

int32_t check_attributes(uint8_t newSet, VwInstance *instance)
{
    uint8_t &current = instance->state.saved.attrState;
    if (((current ^ newSet) & attributes_of_plain_byte) == 0) {
        return 0;
    }
    for (const Attribute &attribute : transition_order) {
        if (((current ^ newSet) & attribute.bit) != 0) {
            current ^= attribute.bit;
            put_attribute(instance, attribute.code, (current & attribute.bit) != 0);
        }
    }
    return 0;
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
