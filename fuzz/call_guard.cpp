// Bounds on the number of calls turn output that grows faster than its input into a finding.
#include "fuzz/call_guard.h"

#include <cstdio>
#include <cstdlib>
#include <initializer_list>

namespace fuzz {
namespace {

// A read call announces at most 30 tab stops and four header and footer lines of 255 bytes,
// each with its block, attributes and break.
constexpr std::size_t most_announcements = 1500;
// A line end byte of a Professional Write body reports its spacing twice, indents, a break
// and a space: more than any other byte.
constexpr std::size_t most_calls_per_byte = 8;

constexpr int32_t document_font = 24;

bool is_call(const Call &call, std::initializer_list<int32_t> arguments)
{
    std::size_t i = 0;
    for (const int32_t argument : arguments) {
        if (call.arguments[i++] != argument) {
            return false;
        }
    }
    return call.count == static_cast<int32_t>(arguments.size());
}

bool is_tab_stop_call(int32_t id)
{
    return id == VW_SO_TAB_STOPS_BEGIN || id == VW_SO_TAB_STOP || id == VW_SO_TAB_STOPS_END;
}

bool is_whole_columns(int32_t twips)
{
    return twips % VW_TWIPS_PER_COLUMN == 0;
}

bool is_tab_stop(const Call &call)
{
    const auto &[kind, alignment, leader, position] = call.arguments;
    const bool known =
        (kind == VW_TAB_LEFT && alignment == 0) || (kind == VW_TAB_DECIMAL && alignment == '.');
    return known && leader == 0 && is_whole_columns(position);
}

} // namespace

void trap(const char *what)
{
    std::fprintf(stderr, "fuzz: %s\n", what);
    std::abort();
}

CallGuard::CallGuard(std::size_t bytes) : most_calls(most_calls_per_byte * bytes) {}

void CallGuard::read_begins()
{
    most_calls += most_announcements;
    document_ended = false;
    in_text = false;
}

void CallGuard::read_ends()
{
    require(!in_tab_stops, "a read call ended within the tab stops");
    require(!kind_expected, "a block was opened without its kind");
}

void CallGuard::expect_foreign_state()
{
    foreign_state = true;
}

bool CallGuard::ended() const
{
    return document_ended;
}

void CallGuard::check(const Call &call)
{
    require(++calls <= most_calls, "more calls than the document is long");
    check_sequence(call);
    check_arguments(call);
}

void CallGuard::check_sequence(const Call &call)
{
    require(!document_ended, "a call after the end of the document");
    if (in_tab_stops) {
        require(is_tab_stop_call(call.id) && call.id != VW_SO_TAB_STOPS_BEGIN,
                "not a call that may stand within the tab stops");
    } else {
        require(!is_tab_stop_call(call.id) || call.id == VW_SO_TAB_STOPS_BEGIN,
                "a tab stop outside the tab stops");
    }
    require(kind_expected == (call.id == VW_SO_HEADER_FOOTER),
            "a block's kind belongs right after its opening");
    in_tab_stops =
        (in_tab_stops || call.id == VW_SO_TAB_STOPS_BEGIN) && call.id != VW_SO_TAB_STOPS_END;
    kind_expected = call.id == VW_SO_BREAK && call.arguments[0] == VW_BREAK_BLOCK_OPEN;
    in_text = in_text || call.id == VW_SO_LINE_SPACING;
}

void CallGuard::check_arguments(const Call &call)
{
    const auto &[first, second, third, fourth] = call.arguments;
    bool fits = true;
    switch (call.id) {
    case VW_SO_CHARACTER: check_character(call); break;
    case VW_SO_SPECIAL_CHARACTER: fits = first >= 0 && first <= UINT8_MAX && second == 7; break;
    case VW_SO_PAGE_BREAK: fits = is_call(call, {4, 0}); break;
    case VW_SO_ATTRIBUTE: check_attribute(call); break;
    case VW_SO_FONT: fits = first == document_font || foreign_state; break;
    case VW_SO_ALIGNMENT: fits = first >= VW_ALIGN_LEFT && first <= VW_ALIGN_CENTRE; break;
    case VW_SO_INDENTS:
        fits = is_whole_columns(first) && second == 0 && is_whole_columns(third);
        break;
    case VW_SO_TAB_STOPS_BEGIN:
    case VW_SO_TAB_STOPS_END: break;
    case VW_SO_TAB_STOP: fits = is_tab_stop(call); break;
    case VW_SO_MARGINS: fits = is_whole_columns(first) && is_whole_columns(second); break;
    case VW_SO_HEADER_FOOTER: fits = is_call(call, {1, 3}) || is_call(call, {2, 3}); break;
    case VW_SO_BREAK: check_break(call); break;
    case VW_SO_SECTION_START: fits = is_call(call, {0}); break;
    case VW_SO_LINE_SPACING:
        fits = is_call(call, {1, VW_SINGLE_SPACING, 0, 0}) ||
               is_call(call, {1, VW_DOUBLE_SPACING, 0, 0});
        break;
    default: trap("a routine was called that is not among the documented ones");
    }
    require(fits, "not the routine's arguments");
}

void CallGuard::check_character(const Call &call)
{
    const int32_t byte = call.arguments[0];
    const bool missing_header_byte = byte == -1 && in_block;
    require((byte >= 0 && byte <= UINT8_MAX) || missing_header_byte, "not a byte");
}

void CallGuard::check_attribute(const Call &call)
{
    const int32_t code = call.arguments[0];
    const int32_t on = call.arguments[1];
    require(code == 2 || code == 3 || code == 4 || code == 10 || code == 11, "not an attribute");
    require(on == 0 || on == 1, "an attribute is neither on nor off");
    int32_t &reported = attributes[static_cast<std::size_t>(code)];
    require(!in_text || foreign_state || reported != on, "an attribute that has not changed");
    reported = on;
}

void CallGuard::check_break(const Call &call)
{
    const int32_t code = call.arguments[0];
    require(call.arguments[1] == 0, "not a break");
    switch (code) {
    case VW_BREAK_PARAGRAPH: break;
    case VW_BREAK_END_OF_DOCUMENT:
        document_ended = true;
        require(!in_block || foreign_state, "the document ends within a block");
        break;
    case VW_BREAK_BLOCK_OPEN:
        require(!in_block || foreign_state, "a block within a block");
        in_block = true;
        break;
    case VW_BREAK_BLOCK_CLOSE:
        require(in_block || foreign_state, "closes a block that is not open");
        in_block = false;
        break;
    default: trap("not a break");
    }
}

} // namespace fuzz
