#include "tests/support/recording_host.h"

#include <algorithm>
#include <mutex>
#include <utility>

namespace tests {

namespace {

constexpr int32_t most_reads = 100000; // far above what any test document needs

// The live hosts. User words are looked up here before they are used as a host.
std::vector<RecordingHost *> &living_hosts()
{
    static std::vector<RecordingHost *> hosts;
    return hosts;
}

std::mutex &living_hosts_mutex()
{
    static std::mutex mutex;
    return mutex;
}

std::pair<uint32_t, uint32_t> words_of(const RecordingHost *host)
{
    const uint64_t address = reinterpret_cast<uintptr_t>(host);
    return {static_cast<uint32_t>(address), static_cast<uint32_t>(address >> 32)};
}

int32_t deliver(const Call &call, uint32_t user1, uint32_t user2)
{
    RecordingHost *host = nullptr;
    {
        const std::lock_guard lock(living_hosts_mutex());
        const auto found = std::find_if(living_hosts().begin(), living_hosts().end(),
                                        [&](const RecordingHost *candidate) {
                                            return words_of(candidate) == std::pair(user1, user2);
                                        });
        host = found == living_hosts().end() ? nullptr : *found;
    }
    if (host == nullptr) {
        ADD_FAILURE() << "wrong user words " << user1 << ", " << user2 << " in " << text_of({call});
        return 1;
    }
    return host->record(call);
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

static void on_undocumented()
{
    ADD_FAILURE() << "a routine was called that is not among the documented ones";
}

} // extern "C"

RecordingHost::RecordingHost(std::string document) : file(std::move(document))
{
    {
        const std::lock_guard lock(living_hosts_mutex());
        living_hosts().push_back(this);
    }
    instance = VwAllocProc();
    VwLocalUp(&file, &stream, instance);
    register_routines();
    const auto [user1, user2] = words_of(this);
    VwSetUser(user1, user2, instance);
}

RecordingHost::~RecordingHost()
{
    VwBlockFile *wrapped = nullptr;
    VwLocalDown(stream, &wrapped, instance);
    EXPECT_EQ(wrapped, &file);
    VwFreeProc(instance);
    const std::lock_guard lock(living_hosts_mutex());
    living_hosts().erase(std::find(living_hosts().begin(), living_hosts().end(), this));
}

void RecordingHost::register_routines()
{
    for (int32_t id = 1; id <= VW_OUTPUT_ROUTINES; ++id) {
        VwSetSoRtn(id, on_undocumented, instance);
    }
    const auto set = [this](int32_t id, auto routine) {
        VwSetSoRtn(id, reinterpret_cast<VwRoutine>(routine), instance);
    };
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

void RecordingHost::unregister(int32_t id)
{
    VwSetSoRtn(id, nullptr, instance);
}

int32_t RecordingHost::open(int32_t file_id)
{
    return VwStreamOpen(stream, file_id, nullptr, nullptr, instance);
}

int32_t RecordingHost::section()
{
    return VwStreamSection(stream, instance);
}

Calls RecordingHost::read()
{
    recorded.clear();
    checker.read_begins();
    EXPECT_EQ(VwStreamRead(stream, instance), 0);
    checker.read_ends();
    ++reads;
    return take();
}

Calls RecordingHost::read_all()
{
    Calls all;
    for (int32_t n = 0; !document_ended && n < most_reads; ++n) {
        const Calls some = read();
        all.insert(all.end(), some.begin(), some.end());
    }
    EXPECT_TRUE(document_ended) << "the end of the document was not reported";
    return all;
}

Calls RecordingHost::take()
{
    return std::exchange(recorded, {});
}

Place RecordingHost::place() const
{
    Place place{std::vector<uint8_t>(VW_SAVED_STATE_SIZE), 0, checker};
    VwGetData(place.state.data(), instance);
    EXPECT_EQ(VwStreamTell(stream, &place.position), 0);
    return place;
}

void RecordingHost::go_to(const Place &place)
{
    VwSetData(place.state.data(), instance);
    EXPECT_EQ(VwStreamSeek(stream, &place.position), 0);
    checker = place.checker;
    document_ended = false;
}

void RecordingHost::stop_at_all()
{
    stop = Stop::all;
}

void RecordingHost::stop_at_none()
{
    stop = Stop::none;
}

void RecordingHost::stop_at(unsigned number)
{
    stop = Stop::one;
    stop_number = number;
}

int32_t RecordingHost::record(const Call &call)
{
    checker.check(call);
    recorded.push_back(call);
    if (call.id != VW_SO_BREAK || call.arguments[0] != VW_BREAK_PARAGRAPH) {
        document_ended = document_ended ||
                         (call.id == VW_SO_BREAK && call.arguments[0] == VW_BREAK_END_OF_DOCUMENT);
        return 1;
    }
    ++paragraph_ends;
    switch (stop) {
    case Stop::all: return 1;
    case Stop::one: return paragraph_ends == stop_number ? 1 : 0;
    case Stop::none: break;
    }
    return 0;
}

Calls after_announcements(const Calls &calls)
{
    const auto spacing = std::find_if(
        calls.begin(), calls.end(), [](const Call &call) { return call.id == VW_SO_LINE_SPACING; });
    return spacing == calls.end() ? Calls{} : Calls(spacing + 1, calls.end());
}

} // namespace tests
