#include "bench/subject.h"

#include "bench/allocation_count.h"
#include "bench/statistics.h"

#include <climits>
#include <cstdio>
#include <cstdlib>
#include <dlfcn.h>
#include <unistd.h>

namespace bench {

namespace {

[[noreturn]] void give_up(const std::string &why)
{
    static_cast<void>(std::fprintf(stderr, "bench: %s\n", why.c_str()));
    std::exit(EXIT_FAILURE);
}

pfsdoc::Module load_module(const std::string &path)
{
    const pfsdoc::Result<pfsdoc::Module> module = pfsdoc::Module::load(path);
    if (!module.ok()) {
        give_up(path + ": " + module.error().what);
    }
    return module.value();
}

// The library stays loaded as long as the program runs.
void *load_library(const std::string &path)
{
    void *library = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (library == nullptr) {
        give_up(dlerror());
    }
    return library;
}

template <typename Function> Function symbol(void *library, const char *name)
{
    void *address = dlsym(library, name);
    if (address == nullptr) {
        give_up(std::string(name) + " is not there");
    }
    return reinterpret_cast<Function>(address);
}

int32_t append_character(int32_t character, uint32_t low, uint32_t high)
{
    AppendingHost &host = *user_of<AppendingHost>(low, high);
    *host.next++ = static_cast<uint8_t>(character);
    return 0;
}

int32_t append_special_character(int32_t character, int32_t, uint32_t low, uint32_t high)
{
    return append_character(character, low, high);
}

int32_t count_attribute(int32_t, int32_t, uint32_t low, uint32_t high)
{
    ++user_of<AppendingHost>(low, high)->attribute_changes;
    return 0;
}

int32_t on_break(int32_t code, int32_t, uint32_t low, uint32_t high)
{
    AppendingHost &host = *user_of<AppendingHost>(low, high);
    host.ended = host.ended || code == VW_BREAK_END_OF_DOCUMENT;
    return host.stops_at_paragraphs ? 1 : 0;
}

// From its making to its end.
class Measurement {
public:
    explicit Measurement(const MemoryFile &file)
        : file_(file), reads_(file.reads), allocations_(allocation_count()),
          begin_(thread_seconds())
    {
    }

    Measured end(std::size_t characters) const
    {
        const double seconds = thread_seconds() - begin_;
        return {seconds, characters, file_.reads - reads_, allocation_count() - allocations_};
    }

private:
    const MemoryFile &file_;
    uint64_t reads_;
    uint64_t allocations_;
    double begin_;
};

uint32_t position_of(const Reading &reading)
{
    uint32_t position = 0;
    reading.entries.stream_tell(reading.stream, &position);
    return position;
}

} // namespace

std::string program_directory()
{
    char path[PATH_MAX] = {};
    const ssize_t length = readlink("/proc/self/exe", path, sizeof path - 1);
    if (length <= 0) {
        give_up("cannot tell where the program stands");
    }
    const std::string program(path, static_cast<std::size_t>(length));
    return program.substr(0, program.rfind('/') + 1);
}

Subject::Subject() : module_(load_module(program_directory() + "libvs_pfs.so"))
{
    void *floor = load_library(program_directory() + "libbench_floor.so");
    floor_ = symbol<void (*)(VwCharStream *, const FloorTable *)>(floor, "FloorRead");
    const auto floor_uses = symbol<FloorRefill (*)()>(floor, "FloorUses");
    void *module = load_library(program_directory() + "libvs_pfs.so");
    if (floor_uses() != symbol<FloorRefill>(module, "vxfilbuf")) {
        give_up("the floor reads through another module's stream");
    }
}

AppendingHost::AppendingHost(std::size_t document_size)
    : buffer_(std::make_unique<uint8_t[]>(document_size))
{
    rewind();
}

VwRoutine AppendingHost::character_routine()
{
    return reinterpret_cast<VwRoutine>(append_character);
}

void AppendingHost::register_with(Reading &reading)
{
    reading.on(VW_SO_CHARACTER, append_character);
    reading.on(VW_SO_SPECIAL_CHARACTER, append_special_character);
    reading.on(VW_SO_ATTRIBUTE, count_attribute);
    reading.on(VW_SO_BREAK, on_break);
}

Measured measure_floor(const Subject &subject, std::string_view document, AppendingHost &host)
{
    MemoryFile file(document);
    Reading reading(subject.entries(), file, &host);
    FloorTable table{};
    table.routines[VW_SO_CHARACTER - 1] = AppendingHost::character_routine();
    const auto address = uint64_t{reinterpret_cast<std::uintptr_t>(&host)};
    table.user1 = static_cast<uint32_t>(address);
    table.user2 = static_cast<uint32_t>(address >> 32);
    host.rewind();
    const Measurement measurement(file);
    subject.read_floor(reading.stream, table);
    return measurement.end(host.characters());
}

Measured measure_module(const Subject &subject, std::string_view document, AppendingHost &host)
{
    MemoryFile file(document);
    Reading reading(subject.entries(), file, &host);
    host.register_with(reading);
    reading.open();
    host.rewind();
    const Measurement measurement(file);
    reading.entries.stream_read(reading.stream, reading.instance);
    return measurement.end(host.characters());
}

Measured measure_silent(const Subject &subject, std::string_view document)
{
    MemoryFile file(document);
    Reading reading(subject.entries(), file, nullptr);
    reading.open();
    const Measurement measurement(file);
    // Unregistered, routine 13 returns 1 at each paragraph end, and only the position shows the
    // document's end.
    while (position_of(reading) < document.size()) {
        reading.entries.stream_read(reading.stream, reading.instance);
    }
    return measurement.end(0);
}

} // namespace bench
