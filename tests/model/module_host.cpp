#include "tests/model/module_host.h"

#include <algorithm>
#include <stdexcept>

namespace tests::model {

namespace {

constexpr int32_t undocumented_id = 99; // makes a difference that the comparison reports

int32_t deliver(const Call &call, uint32_t user1, uint32_t user2)
{
    const uint64_t address = user1 | (static_cast<uint64_t>(user2) << 32);
    return reinterpret_cast<ModuleHost *>(static_cast<uintptr_t>(address))->record(call);
}

} // namespace

extern "C" {

static int32_t on_character(int32_t a, uint32_t user1, uint32_t user2)
{
    return deliver({VW_SO_CHARACTER, 1, {a}}, user1, user2);
}

static int32_t on_special_character(int32_t a, int32_t b, uint32_t user1, uint32_t user2)
{
    return deliver({VW_SO_SPECIAL_CHARACTER, 2, {a, b}}, user1, user2);
}

static int32_t on_page_break(int32_t a, int32_t b, uint32_t user1, uint32_t user2)
{
    return deliver({VW_SO_PAGE_BREAK, 2, {a, b}}, user1, user2);
}

static int32_t on_attribute(int32_t a, int32_t b, uint32_t user1, uint32_t user2)
{
    return deliver({VW_SO_ATTRIBUTE, 2, {a, b}}, user1, user2);
}

static int32_t on_font(int32_t a, uint32_t user1, uint32_t user2)
{
    return deliver({VW_SO_FONT, 1, {a}}, user1, user2);
}

static int32_t on_alignment(int32_t a, uint32_t user1, uint32_t user2)
{
    return deliver({VW_SO_ALIGNMENT, 1, {a}}, user1, user2);
}

static int32_t on_indents(int32_t a, int32_t b, int32_t c, uint32_t user1, uint32_t user2)
{
    return deliver({VW_SO_INDENTS, 3, {a, b, c}}, user1, user2);
}

static int32_t on_tab_stops_begin(uint32_t user1, uint32_t user2)
{
    return deliver({VW_SO_TAB_STOPS_BEGIN, 0, {}}, user1, user2);
}

static int32_t on_tab_stops_end(uint32_t user1, uint32_t user2)
{
    return deliver({VW_SO_TAB_STOPS_END, 0, {}}, user1, user2);
}

static int32_t on_tab_stop(const VwTabStop *stop, uint32_t user1, uint32_t user2)
{
    return deliver({VW_SO_TAB_STOP,
                    4,
                    {stop->kind, stop->alignmentCharacter, stop->leaderCharacter,
                     static_cast<int32_t>(stop->position)}},
                   user1, user2);
}

static int32_t on_margins(int32_t a, int32_t b, uint32_t user1, uint32_t user2)
{
    return deliver({VW_SO_MARGINS, 2, {a, b}}, user1, user2);
}

static int32_t on_header_footer(int32_t a, int32_t b, uint32_t user1, uint32_t user2)
{
    return deliver({VW_SO_HEADER_FOOTER, 2, {a, b}}, user1, user2);
}

static int32_t on_break(int32_t a, int32_t b, uint32_t user1, uint32_t user2)
{
    return deliver({VW_SO_BREAK, 2, {a, b}}, user1, user2);
}

static int32_t on_section_start(int32_t a, uint32_t user1, uint32_t user2)
{
    return deliver({VW_SO_SECTION_START, 1, {a}}, user1, user2);
}

static int32_t on_line_spacing(int32_t a, int32_t b, int32_t c, int32_t d, uint32_t user1,
                               uint32_t user2)
{
    return deliver({VW_SO_LINE_SPACING, 4, {a, b, c, d}}, user1, user2);
}

static int32_t on_undocumented(uint32_t user1, uint32_t user2)
{
    return deliver({undocumented_id, 0, {}}, user1, user2);
}

} // extern "C"

ModuleHost::ModuleHost(const std::string &document, uint32_t most_per_read,
                       const Answers &host_answers)
    : answers(host_answers), file(document), instance(VwAllocProc())
{
    file.keep_log = false;
    file.most_per_read = most_per_read;
    if (instance == nullptr) {
        throw std::bad_alloc();
    }
    VwLocalUp(&file, &stream, instance);
    if (stream == nullptr) {
        VwFreeProc(instance);
        throw std::bad_alloc();
    }
    register_routines();
    const uint64_t address = reinterpret_cast<uintptr_t>(this);
    VwSetUser(static_cast<uint32_t>(address), static_cast<uint32_t>(address >> 32), instance);
}

ModuleHost::~ModuleHost()
{
    VwBlockFile *wrapped = nullptr;
    VwLocalDown(stream, &wrapped, instance);
    VwFreeProc(instance);
}

void ModuleHost::register_routines()
{
    const auto set = [this](int32_t id, auto routine) {
        VwSetSoRtn(id, reinterpret_cast<VwRoutine>(routine), instance);
    };
    for (int32_t id = 1; id <= VW_OUTPUT_ROUTINES; ++id) {
        set(id, on_undocumented);
    }
    set(VW_SO_CHARACTER, on_character);
    set(VW_SO_SPECIAL_CHARACTER, on_special_character);
    set(VW_SO_PAGE_BREAK, on_page_break);
    set(VW_SO_ATTRIBUTE, on_attribute);
    set(VW_SO_FONT, on_font);
    set(VW_SO_ALIGNMENT, on_alignment);
    set(VW_SO_INDENTS, on_indents);
    set(VW_SO_TAB_STOPS_BEGIN, on_tab_stops_begin);
    set(VW_SO_TAB_STOPS_END, on_tab_stops_end);
    set(VW_SO_TAB_STOP, on_tab_stop);
    set(VW_SO_MARGINS, on_margins);
    set(VW_SO_HEADER_FOOTER, on_header_footer);
    set(VW_SO_BREAK, on_break);
    set(VW_SO_SECTION_START, on_section_start);
    set(VW_SO_LINE_SPACING, on_line_spacing);
}

bool ModuleHost::open()
{
    constexpr int32_t any_file_id = 1012;
    return VwStreamOpen(stream, any_file_id, nullptr, nullptr, instance) == 0;
}

void ModuleHost::section()
{
    VwStreamSection(stream, instance);
}

void ModuleHost::read()
{
    VwStreamRead(stream, instance);
}

uint32_t ModuleHost::position() const
{
    uint32_t position = 0;
    VwStreamTell(stream, &position);
    return position;
}

uint32_t ModuleHost::clamped_position() const
{
    return std::min(position(), static_cast<uint32_t>(file.bytes.size()));
}

SavedBytes ModuleHost::saved() const
{
    SavedBytes state;
    VwGetData(state.data(), instance);
    return state;
}

void ModuleHost::go_to(const SavedBytes &state, uint32_t to)
{
    VwSetData(state.data(), instance);
    VwStreamSeek(stream, &to);
}

void ModuleHost::forget_calls()
{
    events.clear();
    states.clear();
}

void ModuleHost::note_state()
{
    const SavedBytes bytes = saved();
    if (states.empty() || bytes != last_noted) {
        states.push_back({events.size(), fields_of(bytes)});
        last_noted = bytes;
    }
}

int32_t ModuleHost::record(const Call &call)
{
    note_state();
    events.push_back({call, clamped_position()});
    const bool paragraph_end = call.id == VW_SO_BREAK && call.arguments[0] == VW_BREAK_PARAGRAPH;
    return paragraph_end ? answers.next() : 1;
}

} // namespace tests::model
