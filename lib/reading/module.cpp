#include "pfsdoc/module.h"

#include "lib/base/program_directory.h"

#include <array>
#include <cstdlib>
#include <dlfcn.h>
#include <filesystem>
#include <system_error>

namespace pfsdoc {

namespace {

constexpr const char *module_file_name = "libvs_pfs.so";
constexpr const char *entry_symbol = "VwGetRtns";
constexpr const char *environment_variable = "VS_PFS_MODULE";
constexpr const char *linked_name = "linked";
constexpr uint32_t info_marker = 0x12345678;

using EntryTable = std::array<VwRoutine, VW_ENTRY_SLOTS>;

Error unfit(const std::string &what)
{
    return {ErrorKind::internal, what,
            "name a compatible module with --module, or use the built-in one with --module linked"};
}

template <typename Function> void take(const EntryTable &table, VwEntrySlot slot, Function &entry)
{
    entry = reinterpret_cast<Function>(table[slot]);
}

ModuleEntries typed(const EntryTable &table)
{
    ModuleEntries entries{};
    take(table, VW_ENTRY_STREAM_OPEN, entries.stream_open);
    take(table, VW_ENTRY_STREAM_SECTION, entries.stream_section);
    take(table, VW_ENTRY_STREAM_READ, entries.stream_read);
    take(table, VW_ENTRY_STREAM_TELL, entries.stream_tell);
    take(table, VW_ENTRY_STREAM_SEEK, entries.stream_seek);
    take(table, VW_ENTRY_GET_INFO, entries.get_info);
    take(table, VW_ENTRY_GET_DATA, entries.get_data);
    take(table, VW_ENTRY_SET_DATA, entries.set_data);
    take(table, VW_ENTRY_LOCAL_UP, entries.local_up);
    take(table, VW_ENTRY_LOCAL_DOWN, entries.local_down);
    take(table, VW_ENTRY_ALLOC_PROC, entries.alloc_proc);
    take(table, VW_ENTRY_FREE_PROC, entries.free_proc);
    take(table, VW_ENTRY_SET_USER, entries.set_user);
    take(table, VW_ENTRY_SET_SO_RTN, entries.set_so_rtn);
    return entries;
}

// The slots up to the one of VwSetSoRtn are those this host calls.
Status check_slots(const EntryTable &table)
{
    for (std::size_t slot = 0; slot <= VW_ENTRY_SET_SO_RTN; ++slot) {
        if (table[slot] == nullptr) {
            return unfit("the module leaves entry " + std::to_string(slot) + " empty");
        }
    }
    return {};
}

// The number that answers a query, 0 when the module does not know it.
template <typename Number> Number ask(const ModuleEntries &entries, uint32_t query)
{
    // Room beyond the number, for a module that answers with more than was asked.
    union {
        Number number;
        std::array<unsigned char, 64> room;
    } answer{};
    return entries.get_info(&answer, query, nullptr) == 1 ? answer.number : Number{0};
}

Status check_sizes(const ModuleEntries &entries)
{
    struct Expectation {
        uint32_t query;
        uint16_t value;
    };
    constexpr std::array<Expectation, 4> expectations = {{{VW_INFO_SAVED_STATE_SIZE, 328},
                                                          {VW_INFO_FILTER_STATE_SIZE, 380},
                                                          {VW_INFO_INIT_SIZE, VW_PFS_INIT_SIZE},
                                                          {VW_INFO_FILE_KINDS, VW_FILE_KINDS}}};
    for (const Expectation &expected : expectations) {
        const auto value = ask<uint16_t>(entries, expected.query);
        if (value != expected.value) {
            return unfit("the module answers query " + std::to_string(expected.query) + " with " +
                         std::to_string(value) + " instead of " + std::to_string(expected.value));
        }
    }
    if (ask<uint32_t>(entries, VW_INFO_MARKER) != info_marker) {
        return unfit("the module does not know its own marker word");
    }
    return {};
}

std::string last_load_error()
{
    const char *message = dlerror();
    return message != nullptr ? message : "unknown reason";
}

// The module that stands where it was installed or built, or an empty path.
std::filesystem::path module_beside_program(const std::string &library_directory)
{
    const std::filesystem::path directory = base::program_directory();
    if (directory.empty()) {
        return {};
    }
    for (const auto &candidate :
         {directory / module_file_name, directory / library_directory / module_file_name}) {
        std::error_code failure;
        if (std::filesystem::exists(candidate, failure)) {
            return candidate;
        }
    }
    return {};
}

} // namespace

Result<Module> Module::from(GetEntries get_entries)
{
    EntryTable table{};
    get_entries(table.data(), VW_INTERFACE_DO_SPECIAL);
    if (Status fault = check_slots(table); !fault.ok()) {
        return fault.error();
    }
    const ModuleEntries entries = typed(table);
    if (Status fault = check_sizes(entries); !fault.ok()) {
        return fault.error();
    }
    return Module(entries);
}

Result<Module> Module::linked()
{
    return from(&VwGetRtns);
}

Result<Module> Module::load(const std::string &path)
{
    const bool is_bare_name = path.find('/') == std::string::npos;
    const std::string location = is_bare_name ? "./" + path : path;
    void *handle = dlopen(location.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (handle == nullptr) {
        return unfit("the module cannot be loaded: " + last_load_error());
    }
    std::shared_ptr<void> library(handle, &dlclose);
    void *symbol = dlsym(handle, entry_symbol);
    if (symbol == nullptr) {
        return unfit(location + " is not such a module: it has no " + entry_symbol);
    }
    Result<Module> result = from(reinterpret_cast<GetEntries>(symbol));
    if (result.ok()) {
        result.value().library_ = std::move(library);
    }
    return result;
}

Result<Module> find_module(const std::string &option, const std::string &library_directory)
{
    std::string wanted = option;
    const char *environment = std::getenv(environment_variable);
    if (wanted.empty() && environment != nullptr) {
        wanted = environment;
    }
    if (wanted.empty()) {
        wanted = module_beside_program(library_directory).string();
    }
    return wanted.empty() || wanted == linked_name ? Module::linked() : Module::load(wanted);
}

} // namespace pfsdoc
