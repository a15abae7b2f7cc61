#include "tests/support/call_checker.h"

namespace tests {

namespace {

constexpr int32_t saved_font = 24;

bool is_call(const Call &call, std::initializer_list<int32_t> arguments)
{
    int32_t i = 0;
    for (const int32_t argument : arguments) {
        if (i >= call.count || call.arguments[static_cast<std::size_t>(i)] != argument) {
            return false;
        }
        ++i;
    }
    return i == call.count;
}

bool is_tab_stop_call(int32_t id)
{
    return id == VW_SO_TAB_STOPS_BEGIN || id == VW_SO_TAB_STOP || id == VW_SO_TAB_STOPS_END;
}

bool is_whole_columns(int32_t twips)
{
    return twips % VW_TWIPS_PER_COLUMN == 0;
}

} // namespace

void CallChecker::fault(const Call &call, const char *what) const
{
    ADD_FAILURE() << "output call " << index << " (" << text_of({call}) << "): " << what;
}

void CallChecker::expect_foreign_state()
{
    foreign_state = true;
}

void CallChecker::expect_no_breaks()
{
    no_breaks = true;
}

void CallChecker::read_begins()
{
    ended = false;
    in_text = false;
}

void CallChecker::read_ends()
{
    EXPECT_FALSE(in_tab_stops) << "a read call ended within the tab stops";
    EXPECT_FALSE(kind_expected) << "a block was opened without its kind";
}

void CallChecker::check(const Call &call)
{
    check_sequence(call);
    check_arguments(call);
    ++index;
}

void CallChecker::check_sequence(const Call &call)
{
    if (ended) {
        fault(call, "a call after the end of the document");
    }
    if (in_tab_stops && (!is_tab_stop_call(call.id) || call.id == VW_SO_TAB_STOPS_BEGIN)) {
        fault(call, "not a call that may stand within the tab stops");
    }
    if (!in_tab_stops && is_tab_stop_call(call.id) && call.id != VW_SO_TAB_STOPS_BEGIN) {
        fault(call, "outside the tab stops");
    }
    if (!no_breaks && kind_expected != (call.id == VW_SO_HEADER_FOOTER)) {
        fault(call, "a block's kind belongs right after its opening");
    }
    in_tab_stops =
        (in_tab_stops || call.id == VW_SO_TAB_STOPS_BEGIN) && call.id != VW_SO_TAB_STOPS_END;
    kind_expected = call.id == VW_SO_BREAK && call.arguments[0] == VW_BREAK_BLOCK_OPEN;
    in_text = in_text || call.id == VW_SO_LINE_SPACING;
}

void CallChecker::check_arguments(const Call &call)
{
    const auto &[first, second, third, fourth] = call.arguments;
    bool fits = true;
    switch (call.id) {
    case VW_SO_CHARACTER: check_character(call); break;
    case VW_SO_SPECIAL_CHARACTER: fits = first >= 0 && first <= 255 && second == 7; break;
    case VW_SO_PAGE_BREAK: fits = is_call(call, {4, 0}); break;
    case VW_SO_ATTRIBUTE: check_attribute(call); break;
    case VW_SO_FONT: fits = first == saved_font || foreign_state; break;
    case VW_SO_ALIGNMENT: fits = first >= VW_ALIGN_LEFT && first <= VW_ALIGN_CENTRE; break;
    case VW_SO_INDENTS:
        fits = is_whole_columns(first) && second == 0 && is_whole_columns(third);
        break;
    case VW_SO_TAB_STOP:
        fits =
            ((first == VW_TAB_LEFT && second == 0) || (first == VW_TAB_DECIMAL && second == '.')) &&
            third == 0 && is_whole_columns(fourth);
        break;
    case VW_SO_MARGINS: fits = is_whole_columns(first) && is_whole_columns(second); break;
    case VW_SO_HEADER_FOOTER: fits = is_call(call, {1, 3}) || is_call(call, {2, 3}); break;
    case VW_SO_BREAK: check_break(call); break;
    case VW_SO_SECTION_START: fits = is_call(call, {0}); break;
    case VW_SO_LINE_SPACING:
        fits = is_call(call, {1, 240, 0, 0}) || is_call(call, {1, 480, 0, 0});
        break;
    default: break;
    }
    if (!fits) {
        fault(call, "not the routine's arguments");
    }
}

void CallChecker::check_character(const Call &call)
{
    const int32_t byte = call.arguments[0];
    const bool missing_header_byte = byte == -1 && in_block;
    if ((byte < 0 || byte > 255) && !missing_header_byte) {
        fault(call, "not a byte");
    }
}

void CallChecker::check_break(const Call &call)
{
    const int32_t code = call.arguments[0];
    const bool known = code == VW_BREAK_PARAGRAPH || code == VW_BREAK_END_OF_DOCUMENT ||
                       code == VW_BREAK_BLOCK_OPEN || code == VW_BREAK_BLOCK_CLOSE;
    if (!known || call.arguments[1] != 0) {
        fault(call, "not a break");
    }
    ended = code == VW_BREAK_END_OF_DOCUMENT;
    if (!foreign_state && code == VW_BREAK_BLOCK_OPEN && in_block) {
        fault(call, "a block within a block");
    }
    if (!foreign_state && code == VW_BREAK_BLOCK_CLOSE && !in_block) {
        fault(call, "closes a block that is not open");
    }
    if (!foreign_state && code == VW_BREAK_END_OF_DOCUMENT && in_block) {
        fault(call, "the document ends within a block");
    }
    in_block = code == VW_BREAK_BLOCK_OPEN || (in_block && code != VW_BREAK_BLOCK_CLOSE);
}

void CallChecker::check_attribute(const Call &call)
{
    const int32_t code = call.arguments[0];
    const int32_t on = call.arguments[1];
    if ((code != 2 && code != 3 && code != 4 && code != 10 && code != 11) || on < 0 || on > 1) {
        fault(call, "not an attribute");
        return;
    }
    int &told = attributes[static_cast<std::size_t>(code)];
    if (in_text && !foreign_state && told == on) {
        fault(call, "reports an attribute that has not changed");
    }
    told = on;
}

} // namespace tests
