#include "lib/reading/session.h"

#include "lib/reading/paragraph_collector.h"

#include <cstring>
#include <utility>

namespace pfsdoc::reading {

namespace {

constexpr int32_t stop = 1;
constexpr unsigned word_bits = 32;

std::pair<uint32_t, uint32_t> words_of(Session *session)
{
    const auto address = uint64_t{reinterpret_cast<std::uintptr_t>(session)};
    return {static_cast<uint32_t>(address), static_cast<uint32_t>(address >> word_bits)};
}

Session *session_of(uint32_t low, uint32_t high)
{
    const uint64_t address = (uint64_t{high} << word_bits) | low;
    return reinterpret_cast<Session *>(static_cast<std::uintptr_t>(address));
}

int32_t deliver(uint32_t low, uint32_t high, const Event &event)
{
    return session_of(low, high)->deliver(event);
}

int32_t character_routine(int32_t byte, uint32_t low, uint32_t high)
{
    return session_of(low, high)->deliver_character(byte);
}

// One routine for each number of arguments, made for each event that has that many.
template <typename E> int32_t routine0(uint32_t low, uint32_t high)
{
    return deliver(low, high, E{});
}

template <typename E> int32_t routine1(int32_t a, uint32_t low, uint32_t high)
{
    return deliver(low, high, E{a});
}

template <typename E> int32_t routine2(int32_t a, int32_t b, uint32_t low, uint32_t high)
{
    return deliver(low, high, E{a, b});
}

template <typename E> int32_t routine3(int32_t a, int32_t b, int32_t c, uint32_t low, uint32_t high)
{
    return deliver(low, high, E{a, b, c});
}

template <typename E>
int32_t routine4(int32_t a, int32_t b, int32_t c, int32_t d, uint32_t low, uint32_t high)
{
    return deliver(low, high, E{a, b, c, d});
}

int32_t tab_stop_routine(const VwTabStop *stop_record, uint32_t low, uint32_t high)
{
    return deliver(low, high,
                   TabStop{stop_record->kind, stop_record->alignmentCharacter,
                           stop_record->leaderCharacter, stop_record->position});
}

class Registrar {
public:
    Registrar(const ModuleEntries &entries, VwInstance *instance)
        : entries_(entries), instance_(instance)
    {
    }

    template <typename Routine> void add(VwOutputId id, Routine routine) const
    {
        entries_.set_so_rtn(id, reinterpret_cast<VwRoutine>(routine), instance_);
    }

private:
    const ModuleEntries &entries_;
    VwInstance *instance_;
};

void register_routines(const ModuleEntries &entries, VwInstance *instance)
{
    const Registrar routines(entries, instance);
    routines.add(VW_SO_CHARACTER, &character_routine);
    routines.add(VW_SO_SPECIAL_CHARACTER, &routine2<SpecialCharacter>);
    routines.add(VW_SO_PAGE_BREAK, &routine2<PageBreak>);
    routines.add(VW_SO_ATTRIBUTE, &routine2<AttributeChange>);
    routines.add(VW_SO_FONT, &routine1<Font>);
    routines.add(VW_SO_ALIGNMENT, &routine1<Alignment>);
    routines.add(VW_SO_INDENTS, &routine3<Indents>);
    routines.add(VW_SO_TAB_STOPS_BEGIN, &routine0<TabStopsBegin>);
    routines.add(VW_SO_TAB_STOPS_END, &routine0<TabStopsEnd>);
    routines.add(VW_SO_TAB_STOP, &tab_stop_routine);
    routines.add(VW_SO_MARGINS, &routine2<Margins>);
    routines.add(VW_SO_HEADER_FOOTER, &routine2<HeaderFooter>);
    routines.add(VW_SO_BREAK, &routine2<Break>);
    routines.add(VW_SO_SECTION_START, &routine1<SectionStart>);
    routines.add(VW_SO_LINE_SPACING, &routine4<LineSpacing>);
}

bool is_end_of_document(const Event &event)
{
    const auto *end = std::get_if<Break>(&event);
    return end != nullptr && end->code == VW_BREAK_END_OF_DOCUMENT;
}

} // namespace

Session::Session(const Module &module, Offsets offsets)
    : module_(module), offsets_(offsets), held_count_(held_at_first(offsets))
{
}

Session::~Session()
{
    if (stream_ != nullptr) {
        VwBlockFile *file = nullptr;
        module_.entries().local_down(stream_, &file, instance_);
    }
    module_.entries().free_proc(instance_);
}

Result<std::unique_ptr<Session>> Session::create(const Module &module, VwBlockFile *file,
                                                 Offsets offsets)
{
    std::unique_ptr<Session> session(new Session(module, offsets));
    session->set_up(file);
    if (session->stream_ == nullptr) {
        return Error{ErrorKind::internal, "there is not enough memory to open the document",
                     "close other programs and try again"};
    }
    return Result<std::unique_ptr<Session>>(std::move(session));
}

void Session::set_up(VwBlockFile *file)
{
    const ModuleEntries &entries = module_.entries();
    instance_ = entries.alloc_proc();
    if (instance_ == nullptr) {
        return;
    }
    entries.local_up(file, &stream_, instance_);
    register_routines(entries, instance_);
    const auto [low, high] = words_of(this);
    entries.set_user(low, high, instance_);
}

bool Session::open(int32_t file_id)
{
    VwFileDescription description{};
    const bool opened =
        module_.entries().stream_open(stream_, file_id, nullptr, &description, instance_) == 0;
    kind_name_.assign(description.fileKindName,
                      strnlen(description.fileKindName, sizeof description.fileKindName));
    ended_ = false;
    return opened;
}

void Session::ignore_tab_stops()
{
    for (const VwOutputId id : {VW_SO_TAB_STOPS_BEGIN, VW_SO_TAB_STOP, VW_SO_TAB_STOPS_END}) {
        module_.entries().set_so_rtn(id, nullptr, instance_);
    }
}

template <typename Call> void Session::run(EventSink &sink, Call call)
{
    sink_ = &sink;
    call(stream_, instance_);
    guarded([] { return 0; });
    sink_ = nullptr;
    if (failure_ != nullptr) {
        held_count_ = held_at_first(offsets_);
        std::rethrow_exception(std::exchange(failure_, nullptr));
    }
}

void Session::section(EventSink &sink)
{
    run(sink, module_.entries().stream_section);
}

void Session::read(EventSink &sink)
{
    run(sink, module_.entries().stream_read);
}

// Hands on what is held back, then does what follows it.
template <typename Call> int32_t Session::guarded(Call call)
{
    if (failure_ != nullptr) {
        return stop;
    }
    try {
        deliver_held();
        return call();
    } catch (const ParagraphTooLarge &stopped) {
        const std::optional<uint64_t> offset = stopped.error().offset;
        failure_ = std::make_exception_ptr(ParagraphTooLarge(offset.value_or(tell())));
    } catch (...) {
        failure_ = std::current_exception();
    }
    held_count_ = none_is_held;
    return stop;
}

void Session::deliver_held()
{
    if (held_count_ > 0 && held_count_ <= most_held) {
        sink_->on_characters({held_.data(), std::exchange(held_count_, 0)});
    }
}

int32_t Session::deliver(const Event &event)
{
    ended_ = ended_ || is_end_of_document(event);
    return guarded(
        [&] { return sink_->on_event(event, offsets_ == Offsets::wanted ? tell() : 0); });
}

// What does not fit, or is not to be held back. Inlined it would cost each character two
// instructions.
[[gnu::noinline]] int32_t Session::deliver_character_slowly(int32_t byte)
{
    if (offsets_ == Offsets::wanted || !is_byte(byte)) {
        return deliver(Character{byte});
    }
    return guarded([&] { return hold(byte); });
}

uint32_t Session::tell() const
{
    uint32_t position = 0;
    module_.entries().stream_tell(stream_, &position);
    return position;
}

bool Session::seek(uint32_t position)
{
    return module_.entries().stream_seek(stream_, &position) == 0;
}

std::array<uint8_t, VW_SAVED_STATE_SIZE> Session::save() const
{
    std::array<uint8_t, VW_SAVED_STATE_SIZE> state{};
    module_.entries().get_data(state.data(), instance_);
    return state;
}

void Session::restore(const std::array<uint8_t, VW_SAVED_STATE_SIZE> &state)
{
    module_.entries().set_data(state.data(), instance_);
}

bool Session::go_to(const Checkpoint &checkpoint)
{
    restore(checkpoint.state);
    ended_ = false;
    return seek(checkpoint.position);
}

} // namespace pfsdoc::reading
