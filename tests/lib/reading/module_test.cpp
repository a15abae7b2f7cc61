// Finding, loading and checking the module.
#include "pfsdoc/module.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <filesystem>
#include <fstream>
#include <unistd.h>

namespace {

using namespace pfsdoc;

// What the fake table's query returns; a test makes one of them wrong.
struct Answers {
    uint16_t saved_state = 328;
    uint16_t filter_state = 380;
    uint16_t init = 208;
    uint16_t kinds = 7;
    uint32_t marker = 0x12345678;
    int32_t known = 1;
};
Answers answers;
int empty_slot;

int32_t fake_info(void *result, uint32_t query, VwInstance *)
{
    const auto put = [result](const auto &value) { std::memcpy(result, &value, sizeof value); };
    switch (query) {
    case VW_INFO_SAVED_STATE_SIZE: put(answers.saved_state); break;
    case VW_INFO_FILTER_STATE_SIZE: put(answers.filter_state); break;
    case VW_INFO_INIT_SIZE: put(answers.init); break;
    case VW_INFO_FILE_KINDS: put(answers.kinds); break;
    case VW_INFO_MARKER: put(answers.marker); break;
    default: return 0;
    }
    return answers.known;
}

void never_called()
{
    FAIL() << "an entry point that a check has no business with";
}

void fake_entries(VwRoutine *table, uint32_t version)
{
    EXPECT_EQ(version, static_cast<uint32_t>(VW_INTERFACE_DO_SPECIAL));
    for (int slot = 0; slot < VW_ENTRY_SLOTS; ++slot) {
        table[slot] = slot == empty_slot ? nullptr : &never_called;
    }
    if (empty_slot != VW_ENTRY_GET_INFO) {
        table[VW_ENTRY_GET_INFO] = reinterpret_cast<VwRoutine>(&fake_info);
    }
}

constexpr int no_slot = -1;

Result<Module> fake_module(const Answers &with, int without_slot = no_slot)
{
    answers = with;
    empty_slot = without_slot;
    return Module::from(&fake_entries);
}

void expect_unfit(const Result<Module> &module, const std::string &what)
{
    ASSERT_FALSE(module.ok());
    EXPECT_EQ(exit_code(module.error().kind), 70);
    EXPECT_NE(module.error().what.find(what), std::string::npos) << module.error().what;
    EXPECT_FALSE(module.error().remedy.empty());
}

// A separate directory; the environment variable that names the module is unaffected.
class FindModule : public ::testing::Test {
protected:
    void SetUp() override
    {
        std::string name = (std::filesystem::temp_directory_path() / "pfsdoc-XXXXXX").string();
        ASSERT_NE(::mkdtemp(name.data()), nullptr);
        directory = name;
        ::unsetenv("VS_PFS_MODULE");
    }
    void TearDown() override
    {
        ::unsetenv("VS_PFS_MODULE");
        std::filesystem::remove_all(directory);
    }
    std::filesystem::path directory;
};

// The loaded module's code is not the linked-in one.
bool is_linked(const Result<Module> &module)
{
    return module.value().entries().stream_read == &VwStreamRead;
}

TEST(Module, LinkedInIsFit)
{
    const Result<Module> module = Module::linked();
    ASSERT_TRUE(module.ok()) << module.error().what;
    EXPECT_EQ(module.value().entries().stream_open, &VwStreamOpen);
    EXPECT_EQ(module.value().entries().set_so_rtn, &VwSetSoRtn);
}

TEST(Module, LoadedIsFitAndWorks)
{
    const Result<Module> module = Module::load(VS_PFS_MODULE_FILE);
    ASSERT_TRUE(module.ok()) << module.error().what;
    EXPECT_FALSE(is_linked(module));
    VwInstance *instance = module.value().entries().alloc_proc();
    EXPECT_NE(instance, nullptr);
    module.value().entries().free_proc(instance);
}

TEST(Module, MissingFileIsAnError)
{
    expect_unfit(Module::load("/nonexistent/libvs_pfs.so"), "cannot be loaded");
}

// dlopen would search the system's directories for a name without a slash.
TEST(Module, BareNameIsAFileInTheCurrentDirectory)
{
    expect_unfit(Module::load("libc.so.6"), "./libc.so.6");
}

TEST(Module, LibraryWithoutTheEntryIsAnError)
{
    Dl_info info{};
    ASSERT_NE(::dladdr(reinterpret_cast<void *>(&::getpid), &info), 0);
    const std::string c_library = info.dli_fname;
    ASSERT_NE(c_library.find("libc"), std::string::npos) << c_library;
    expect_unfit(Module::load(c_library), "has no VwGetRtns");
}

TEST(Module, FakeIsAcceptedIfNothingIsWrong)
{
    EXPECT_TRUE(fake_module({}).ok());
}

TEST(Module, EmptySlotIsAnError)
{
    for (int slot = VW_ENTRY_STREAM_OPEN; slot <= VW_ENTRY_SET_SO_RTN; ++slot) {
        expect_unfit(fake_module({}, slot), "entry " + std::to_string(slot) + " empty");
    }
}

TEST(Module, SlotsThatAreNotCalledMayBeEmpty)
{
    for (const int slot : {14, 15, 16, 17, 18}) {
        EXPECT_TRUE(fake_module({}, slot).ok()) << slot;
    }
}

TEST(Module, OtherSizesAreAnError)
{
    expect_unfit(fake_module({.saved_state = 332}), "query 1 with 332 instead of 328");
    expect_unfit(fake_module({.filter_state = 384}), "query 2 with 384 instead of 380");
    expect_unfit(fake_module({.init = 0}), "query 3 with 0 instead of 208");
    expect_unfit(fake_module({.kinds = 8}), "query 6 with 8 instead of 7");
    expect_unfit(fake_module({.marker = 0x78563412}), "marker");
    expect_unfit(fake_module({.known = 0}), "query 1 with 0");
}

TEST_F(FindModule, FallsBackToTheLinkedInOne)
{
    const Result<Module> module = find_module("", "no-such-directory");
    ASSERT_TRUE(module.ok());
    EXPECT_TRUE(is_linked(module));
}

TEST_F(FindModule, LooksIntoTheLibraryDirectory)
{
    std::filesystem::copy_file(VS_PFS_MODULE_FILE, directory / "libvs_pfs.so");
    const Result<Module> module = find_module("", directory.string());
    ASSERT_TRUE(module.ok()) << module.error().what;
    EXPECT_FALSE(is_linked(module));
}

// A broken installation must not go unnoticed because there is a fallback.
TEST_F(FindModule, DoesNotPassOverAnUnfitOne)
{
    std::ofstream(directory / "libvs_pfs.so") << "no library";
    expect_unfit(find_module("", directory.string()), "cannot be loaded");
}

TEST_F(FindModule, EnvironmentComesBeforeTheLibraryDirectory)
{
    std::ofstream(directory / "libvs_pfs.so") << "no library";
    ::setenv("VS_PFS_MODULE", VS_PFS_MODULE_FILE, 1);
    EXPECT_TRUE(find_module("", directory.string()).ok());
}

TEST_F(FindModule, OptionComesBeforeTheEnvironment)
{
    ::setenv("VS_PFS_MODULE", "/nonexistent", 1);
    EXPECT_FALSE(find_module("", "").ok());
    EXPECT_TRUE(find_module(VS_PFS_MODULE_FILE, "").ok());
}

TEST_F(FindModule, LinkedMeansTheLinkedInOne)
{
    ::setenv("VS_PFS_MODULE", "/nonexistent", 1);
    const Result<Module> module = find_module("linked", "");
    ASSERT_TRUE(module.ok());
    EXPECT_TRUE(is_linked(module));
}

TEST_F(FindModule, GivenButMissingIsAnError)
{
    expect_unfit(find_module((directory / "none.so").string(), ""), "cannot be loaded");
}

} // namespace
