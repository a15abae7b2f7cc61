#include "fuzz/fuzz_host.h"

#include "vs_pfs/filter_interface.h"

#include <algorithm>
#include <utility>

namespace fuzz {
namespace {

// Read calls that report no byte of the body: those that stop at header and footer lines.
constexpr std::size_t most_idle_reads = 16;

// Output routines accept the user words as a host only if that host is alive.
std::vector<Host *> &living_hosts()
{
    static std::vector<Host *> hosts;
    return hosts;
}

std::pair<uint32_t, uint32_t> words_of(const Host *host)
{
    const uint64_t address = reinterpret_cast<uintptr_t>(host);
    return {static_cast<uint32_t>(address), static_cast<uint32_t>(address >> 32)};
}

int32_t deliver(const Call &call, uint32_t user1, uint32_t user2)
{
    for (Host *host : living_hosts()) {
        if (words_of(host) == std::pair(user1, user2)) {
            return host->record(call);
        }
    }
    trap("wrong user words");
}

template <VwOutputId Id> int32_t on_call0(uint32_t user1, uint32_t user2)
{
    return deliver({Id, 0, {}}, user1, user2);
}

template <VwOutputId Id> int32_t on_call1(int32_t a, uint32_t user1, uint32_t user2)
{
    return deliver({Id, 1, {a}}, user1, user2);
}

template <VwOutputId Id> int32_t on_call2(int32_t a, int32_t b, uint32_t user1, uint32_t user2)
{
    return deliver({Id, 2, {a, b}}, user1, user2);
}

template <VwOutputId Id>
int32_t on_call3(int32_t a, int32_t b, int32_t c, uint32_t user1, uint32_t user2)
{
    return deliver({Id, 3, {a, b, c}}, user1, user2);
}

template <VwOutputId Id>
int32_t on_call4(int32_t a, int32_t b, int32_t c, int32_t d, uint32_t user1, uint32_t user2)
{
    return deliver({Id, 4, {a, b, c, d}}, user1, user2);
}

int32_t on_tab_stop(const VwTabStop *stop, uint32_t user1, uint32_t user2)
{
    return deliver({VW_SO_TAB_STOP,
                    4,
                    {stop->kind, stop->alignmentCharacter, stop->leaderCharacter,
                     static_cast<int32_t>(stop->position)}},
                   user1, user2);
}

void on_undocumented()
{
    trap("a routine was called that is not among the documented ones");
}

} // namespace

Host::Host(std::string document, std::size_t claimed_bytes)
    : file(std::move(document)), guard(file.bytes.size() + claimed_bytes),
      most_reads(file.bytes.size() + claimed_bytes + most_idle_reads)
{
    living_hosts().push_back(this);
    file.keep_log = false;
    instance = VwAllocProc();
    require(instance != nullptr, "no memory");
    VwLocalUp(&file, &stream, instance);
    require(stream != nullptr, "no memory");
    register_routines();
    const auto [user1, user2] = words_of(this);
    VwSetUser(user1, user2, instance);
}

Host::~Host()
{
    VwBlockFile *wrapped = nullptr;
    VwLocalDown(stream, &wrapped, instance);
    require(wrapped == &file, "not the block file that was wrapped");
    VwFreeProc(instance);
    living_hosts().erase(std::find(living_hosts().begin(), living_hosts().end(), this));
}

void Host::register_routines()
{
    for (int32_t id = 1; id <= VW_OUTPUT_ROUTINES; ++id) {
        VwSetSoRtn(id, on_undocumented, instance);
    }
    const auto set = [this](int32_t id, auto routine) {
        VwSetSoRtn(id, reinterpret_cast<VwRoutine>(routine), instance);
    };
    set(VW_SO_CHARACTER, on_call1<VW_SO_CHARACTER>);
    set(VW_SO_SPECIAL_CHARACTER, on_call2<VW_SO_SPECIAL_CHARACTER>);
    set(VW_SO_PAGE_BREAK, on_call2<VW_SO_PAGE_BREAK>);
    set(VW_SO_ATTRIBUTE, on_call2<VW_SO_ATTRIBUTE>);
    set(VW_SO_FONT, on_call1<VW_SO_FONT>);
    set(VW_SO_ALIGNMENT, on_call1<VW_SO_ALIGNMENT>);
    set(VW_SO_INDENTS, on_call3<VW_SO_INDENTS>);
    set(VW_SO_TAB_STOPS_BEGIN, on_call0<VW_SO_TAB_STOPS_BEGIN>);
    set(VW_SO_TAB_STOPS_END, on_call0<VW_SO_TAB_STOPS_END>);
    set(VW_SO_TAB_STOP, on_tab_stop);
    set(VW_SO_MARGINS, on_call2<VW_SO_MARGINS>);
    set(VW_SO_HEADER_FOOTER, on_call2<VW_SO_HEADER_FOOTER>);
    set(VW_SO_BREAK, on_call2<VW_SO_BREAK>);
    set(VW_SO_SECTION_START, on_call1<VW_SO_SECTION_START>);
    set(VW_SO_LINE_SPACING, on_call4<VW_SO_LINE_SPACING>);
}

void Host::unregister(int32_t id)
{
    VwSetSoRtn(id, nullptr, instance);
}

bool Host::open()
{
    if (VwStreamOpen(stream, VwPfsOverlayId[0].fileId, nullptr, nullptr, instance) != 0) {
        return false;
    }
    guard.read_begins();
    require(VwStreamSection(stream, instance) == 0, "a section that failed");
    guard.read_ends();
    return true;
}

void Host::read()
{
    guard.read_begins();
    require(VwStreamRead(stream, instance) == 0, "a read call that failed");
    guard.read_ends();
}

void Host::read_all()
{
    for (std::size_t n = 0; !document_ended; ++n) {
        require(n < most_reads, "the end of the document is not reported");
        read();
    }
}

Checkpoint Host::checkpoint() const
{
    Checkpoint checkpoint{{}, 0, guard};
    VwGetData(checkpoint.state.data(), instance);
    require(VwStreamTell(stream, &checkpoint.position) == 0, "a position that failed");
    return checkpoint;
}

void Host::go_to(const Checkpoint &checkpoint)
{
    VwSetData(checkpoint.state.data(), instance);
    require(VwStreamSeek(stream, &checkpoint.position) == 0, "a seek that failed");
    guard = checkpoint.guard;
    document_ended = false;
}

int32_t Host::record(const Call &call)
{
    guard.check(call);
    recorded.push_back(call);
    document_ended = guard.ended();
    return answer ? answer(call) : 0;
}

void read_both_ways(const std::string &document, uint32_t most_per_read, bool stop)
{
    const auto answer = [stop](const Call &) { return stop ? 1 : 0; };
    Host plain(document);
    Host first(document);
    Host second(document);
    first.answer = second.answer = answer;
    plain.answer = [&](const Call &call) {
        plain.instance->lookahead = {};
        return answer(call);
    };
    first.file.most_per_read = second.file.most_per_read = most_per_read;
    const bool known = plain.open();
    require(first.open() == known && second.open() == known, "opens in one instance only");
    if (!known) {
        return;
    }
    plain.read_all();
    Host *reader = &first;
    Host *other = &second;
    while (!reader->document_ended) {
        reader->read();
        if (!reader->document_ended) {
            other->go_to(reader->checkpoint());
            other->recorded = std::move(reader->recorded);
            std::swap(reader, other);
        }
    }
    require(reader->recorded == plain.recorded, "reads differently in pieces");
}

} // namespace fuzz
