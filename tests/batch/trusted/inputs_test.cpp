// Folders, lists and single files of a batch: their order, their names and what is wrong with
// them. Archives are in archive_inputs_test.cpp.
#include "tests/batch/pipe.h"
#include "tests/batch/trusted/batch_folder.h"

#include <chrono>
#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <thread>

namespace {

using tests::BatchFolder;
using tests::lines_of;
namespace fs = std::filesystem;

class Inputs : public BatchFolder {};

TEST_F(Inputs, come_in_the_order_of_the_command_line)
{
    write("b.doc", "B");
    write("a.doc", "A");
    EXPECT_EQ(found({"b.doc", "a.doc"}), "b.doc = B\n"
                                         "a.doc = A\n");
}

TEST_F(Inputs, of_no_paths_are_none)
{
    EXPECT_EQ(found({}), "");
}

TEST_F(Inputs, of_a_folder_are_sorted_by_bytes)
{
    for (const char *name : {"d", "c", "B", "A", "c.b", "c-b", "10", "9", "\xC3\xA4"}) {
        write(fs::path("in") / name, "");
    }
    EXPECT_EQ(found({"in"}), "in/10 = \n"
                             "in/9 = \n"
                             "in/A = \n"
                             "in/B = \n"
                             "in/c = \n"
                             "in/c-b = \n"
                             "in/c.b = \n"
                             "in/d = \n"
                             "in/\xC3\xA4 = \n");
}

TEST_F(Inputs, of_folders_in_folders_come_where_the_folder_stands)
{
    write("in/a", "1");
    write("in/b/c/d", "2");
    write("in/b/e", "3");
    write("in/f", "4");
    fs::create_directories("in/b/empty/deeper");
    EXPECT_EQ(found({"in"}), "in/a = 1\n"
                             "in/b/c/d = 2\n"
                             "in/b/e = 3\n"
                             "in/f = 4\n");
}

TEST_F(Inputs, go_by_the_last_part_of_what_was_named)
{
    write("x/y/in/a", "1");
    const std::string absolute = (directory / "x/y/in").string();
    for (const std::string &path : {std::string("x/y/in"), absolute, absolute + "//"}) {
        EXPECT_EQ(found({path}), "in/a = 1\n") << path;
    }
    EXPECT_EQ(found({"x/y/in/a"}), "a = 1\n");
}

TEST_F(Inputs, of_the_current_folder_have_no_name_before_theirs)
{
    write("a", "1");
    fs::create_directory("b");
    EXPECT_EQ(found({"."}), "a = 1\n");
    EXPECT_EQ(found({"./"}), "a = 1\n");
    EXPECT_EQ(found({"b/.."}), "a = 1\n");
}

TEST_F(Inputs, of_one_name_are_numbered)
{
    write("x/in/a.doc", "1");
    write("y/in/a.doc", "2");
    EXPECT_EQ(found({"x/in/a.doc", "y/in/a.doc", "x/in/a.doc"}), "a.doc = 1\n"
                                                                 "a (2).doc = 2\n"
                                                                 "a (3).doc = 1\n");
    EXPECT_EQ(found({"x/in", "y/in"}), "in/a.doc = 1\n"
                                       "in (2)/a.doc = 2\n");
}

// Which of them came first depended on which was converted first.
TEST_F(Inputs, whose_outputs_would_be_in_each_others_way_are_numbered)
{
    write("t/LETTER", "1");
    write("t/a", "2");
    write("t/a-slow", "3");
    write("t/a.html/b", "4");
    write("t/a.html/c", "5");
    write("t/letter", "6");
    write("t/manifest", "7");
    pfsdoc::batch::InputOptions options;
    options.paths = {"t"};
    options.extension = "html";
    options.reserved = {"t/manifest.html"};
    EXPECT_EQ(lines_of(options), "t/LETTER = 1\n"
                                 "t/a = 2\n"
                                 "t/a-slow = 3\n"
                                 "t/a (2).html/b = 4\n"
                                 "t/a (2).html/c = 5\n"
                                 "t/letter (2) = 6\n"
                                 "t/manifest (2) = 7\n");
}

TEST_F(Inputs, that_are_missing_are_errors)
{
    write("a", "1");
    EXPECT_EQ(found({"no.doc", "a", "a/b"}),
              "no.doc !input cannot be read: No such file or directory\n"
              "a = 1\n"
              "b !input cannot be read: Not a directory\n");
}

TEST_F(Inputs, that_are_too_large_are_errors)
{
    write("in/a", "123");
    write("in/b", "1234");
    pfsdoc::batch::InputOptions options;
    options.paths = {"in"};
    options.max_input = 3;
    EXPECT_EQ(lines_of(options), "in/a = 123\n"
                                 "in/b !limit has 4 bytes, and 3 are allowed\n");
}

TEST_F(Inputs, follow_links_that_are_named_only)
{
    write("else/a", "1");
    fs::create_directory("in");
    fs::create_directory_symlink("../else", "in/folder");
    fs::create_symlink("../else/a", "in/file");
    fs::create_symlink("nowhere", "in/hanging");
    fs::create_directory_symlink(".", "in/loop");
    EXPECT_EQ(found({"in", "in/file", "in/folder"}),
              "in/file !skipped is a symbolic link, which is not followed inside a folder\n"
              "in/folder !skipped is a symbolic link, which is not followed inside a folder\n"
              "in/hanging !skipped is a symbolic link, which is not followed inside a folder\n"
              "in/loop !skipped is a symbolic link, which is not followed inside a folder\n"
              "file = 1\n"
              "folder/a = 1\n");
    EXPECT_EQ(found({"in/hanging"}), "hanging !input cannot be read: No such file or directory\n");
}

// Opening the pipe would wait for ever.
TEST_F(Inputs, that_are_no_files_are_errors)
{
    fs::create_directory("in");
    ASSERT_EQ(::mkfifo("in/pipe", 0600), 0);
    const pfsdoc::base::Descriptor socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
    sockaddr_un address{AF_UNIX, "in/socket"};
    ASSERT_EQ(::bind(socket.get(), reinterpret_cast<sockaddr *>(&address), sizeof address), 0);
    EXPECT_EQ(found({"in", "in/pipe", "/dev/null"}), "in/pipe !skipped is a pipe\n"
                                                     "in/socket !skipped is a socket\n"
                                                     "pipe !input is a pipe\n"
                                                     "null !input is a device\n");
}

// The superuser may read everything, and is nobody for this.
class AsNobody {
public:
    AsNobody()
    {
        constexpr uid_t nobody = 65534;
        EXPECT_TRUE(::getuid() != 0 || ::seteuid(nobody) == 0);
    }
    ~AsNobody()
    {
        EXPECT_EQ(::seteuid(::getuid()), 0);
    }
    AsNobody(const AsNobody &) = delete;
    AsNobody &operator=(const AsNobody &) = delete;
};

TEST_F(Inputs, that_may_not_be_read_are_errors)
{
    write("in/a", "1");
    write("in/b/c", "2");
    write("in/d", "3");
    fs::permissions(".", fs::perms(0755));
    fs::permissions("in/a", fs::perms::none);
    fs::permissions("in/b", fs::perms::none);
    {
        const AsNobody nobody;
        EXPECT_EQ(found({"in"}), "in/a !input cannot be read: Permission denied\n"
                                 "in/b !input cannot be read: Permission denied\n"
                                 "in/d = 3\n");
    }
    fs::permissions("in/b", fs::perms::owner_all);
}

// It was recorded as "in (2)", as if there were another.
TEST_F(Inputs, that_are_folders_nobody_may_list_keep_their_name)
{
    fs::create_directories("in/b");
    write("in/b/c", "2");
    fs::permissions(".", fs::perms(0755));
    fs::permissions("in", fs::perms::none);
    {
        const AsNobody nobody;
        EXPECT_EQ(found({"in", "in/"}), "in !input cannot be read: Permission denied\n"
                                        "in (2) !input cannot be read: Permission denied\n");
    }
    fs::permissions("in", fs::perms::owner_all);
}

TEST_F(Inputs, say_where_they_were_found)
{
    write("x/in/a", "1");
    write("x/in/b/c\xFF", "2");
    write("list", "./x//in/a\nnowhere\n");
    fs::create_symlink("a", "x/in/link");
    pfsdoc::batch::InputOptions options;
    options.paths = {"x/in", "./x/in/", "x/../x/in/a", "x/in/b/"};
    options.list_files = {"list", "no list"};
    EXPECT_EQ(tests::sources_of(options), "in/a < x/in/a\n"
                                          "in/b/c\\xFF < x/in/b/c\xFF\n"
                                          "in/link < x/in/link skipped\n"
                                          "in (2)/a < ./x/in/a\n"
                                          "in (2)/b/c\\xFF < ./x/in/b/c\xFF\n"
                                          "in (2)/link < ./x/in/link skipped\n"
                                          "a < x/../x/in/a\n"
                                          "b/c\\xFF < x/in/b/c\xFF\n"
                                          "x/in/a < ./x//in/a\n"
                                          "nowhere < nowhere unreadable\n"
                                          "no list < no list unreadable\n");
}

TEST_F(Inputs, are_found_down_to_the_deepest_folder)
{
    constexpr int deepest = 256;
    fs::path path = "in";
    fs::create_directory(path);
    std::string name = "in";
    for (int level = 1; level < deepest; ++level) {
        path /= "d";
        fs::create_directory(path);
    }
    write(path / "a", "1");
    write(path / "e/b", "2");
    EXPECT_EQ(found({"in"}), (path / "a").string() + " = 1\n" + (path / "e").string() +
                                 " !limit lies more than 256 folders deep\n");
}

TEST_F(Inputs, pass_over_the_excluded_folder)
{
    write("in/a", "1");
    write("in/out/b", "2");
    write("in/z/out/c", "3");
    fs::create_directory_symlink("in/out", "out");
    pfsdoc::batch::InputOptions options;
    options.paths = {"in", "in/out"};
    options.exclude = "out"; // by another name
    EXPECT_EQ(lines_of(options), "in/a = 1\n"
                                 "in/z/out/c = 3\n"
                                 "out/b = 2\n");
}

TEST_F(Inputs, have_names_that_lead_nowhere_else)
{
    write("in/a\\..\\b", "1");
    write("in/line\nend", "2");
    write("in/\x81", "3");
    write("in/...", "4");
    EXPECT_EQ(found({"in"}), "in/... = 4\n"
                             "in/a\\x5C..\\x5Cb = 1\n"
                             "in/line\\x0Aend = 2\n"
                             "in/\\x81 = 3\n");
}

TEST_F(Inputs, leave_no_descriptor_open)
{
    write("in/a/b/c", "1");
    const int before_it = ::dup(STDIN_FILENO);
    ::close(before_it);
    EXPECT_EQ(found({"in", "in/no"}), "in/a/b/c = 1\n"
                                      "no !input cannot be read: No such file or directory\n");
    const int after_it = ::dup(STDIN_FILENO);
    ::close(after_it);
    EXPECT_EQ(after_it, before_it);
}

class Lists : public BatchFolder {
protected:
    void SetUp() override
    {
        BatchFolder::SetUp();
        write("in/a", "1");
        write("in/b/c", "2");
        write("in/line\nend", "3");
    }
};

TEST_F(Lists, name_files_and_folders_by_their_whole_path)
{
    EXPECT_EQ(listed("in/b\n./in//a\nno\n"),
              "in/b/c = 2\n"
              "in/a = 1\n"
              "no !input cannot be read: No such file or directory\n");
}

TEST_F(Lists, need_no_end_of_line_and_skip_empty_ones)
{
    EXPECT_EQ(listed("\n\nin/a\n\nin/b/c"), "in/a = 1\n"
                                            "in/b/c = 2\n");
    EXPECT_EQ(listed(""), "");
    EXPECT_EQ(listed("\n"), "");
}

TEST_F(Lists, may_end_paths_with_nul)
{
    using namespace std::string_literals;
    EXPECT_EQ(listed("in/line\nend\0\0in/a\0"s), "in/line\\x0Aend = 3\n"
                                                 "in/a = 1\n");
    EXPECT_EQ(listed("in/a\0in/b/c"s), "in/a = 1\n"
                                       "in/b/c = 2\n");
}

TEST_F(Lists, tell_their_sort_by_their_beginning)
{
    std::string list;
    while (list.size() < 5000) {
        list += "in/a\n";
    }
    const std::string lines = listed(list + std::string("in/\0a", 5));
    EXPECT_EQ(lines.substr(lines.rfind("in/")),
              "in/\\x00a !input has a NUL byte, which no path has\n");
}

TEST_F(Lists, have_a_longest_line)
{
    const std::string longest = std::string(4096 - 4, '/') + "in/a";
    EXPECT_EQ(listed(longest + "/\nin/a\n"),
              "unnamed !limit is longer than the 4096 bytes of a path\n"
              "in/a = 1\n");
    EXPECT_EQ(listed(std::string(1'000'000, 'x') + "\nin/a"),
              std::string(100, 'x') + " !limit is longer than the 4096 bytes of a path\n"
                                      "in/a = 1\n");
    EXPECT_EQ(listed(std::string(1'000'000, 'x')),
              std::string(100, 'x') + " !limit is longer than the 4096 bytes of a path\n");
}

TEST_F(Lists, are_read_across_the_parts_of_the_file)
{
    std::string list;
    std::string expected;
    for (int time = 1; time <= 30'000; ++time) {
        list += "in/a\n";
        expected += time == 1 ? "in/a = 1\n" : "in/a (" + std::to_string(time) + ") = 1\n";
    }
    EXPECT_EQ(listed(list), expected);
}

TEST_F(Lists, that_cannot_be_read_are_errors)
{
    pfsdoc::batch::InputOptions options;
    options.list_files = {"no", "in"};
    EXPECT_EQ(lines_of(options), "no !input cannot be read: No such file or directory\n"
                                 "in !input cannot be read: Is a directory\n");
}

TEST_F(Lists, come_behind_the_paths_and_one_after_the_other)
{
    write("one", "in/b");
    write("two", "in/a");
    pfsdoc::batch::InputOptions options;
    options.paths = {"two"};
    options.list_files = {"one", "two"};
    EXPECT_EQ(lines_of(options), "two = in/a\n"
                                 "in/b/c = 2\n"
                                 "in/a = 1\n");
}

TEST_F(Lists, come_from_standard_input)
{
    write("list", "in/a\n");
    const pfsdoc::base::Descriptor list(::open("list", O_RDONLY | O_CLOEXEC));
    const pfsdoc::base::Descriptor saved(::dup(STDIN_FILENO));
    ::dup2(list.get(), STDIN_FILENO);
    pfsdoc::batch::InputOptions options;
    options.list_files = {"-"};
    EXPECT_EQ(lines_of(options), "in/a = 1\n");
    ::dup2(saved.get(), STDIN_FILENO);
}

// Whoever writes it may take as long as a person.
TEST_F(Lists, are_waited_for_until_no_more_is_wanted)
{
    const tests::Pipe list;
    EXPECT_EQ(::write(list.writing.get(), "in/a\nin/", 8), 8);
    int waits = 0;
    pfsdoc::batch::InputOptions options;
    options.list_files = {"/proc/self/fd/" + std::to_string(list.reading.get())};
    options.wait = [&](int, auto) { return ++waits == 1; }; // what was written comes at once
    const auto inputs = tests::opened(options);
    EXPECT_FALSE(inputs->next().has_value()) << "what was written may be cut";
    EXPECT_EQ(waits, 2);
}

// Which does not end while these are read.
TEST_F(Lists, report_each_path_as_soon_as_it_is_there)
{
    using namespace std::string_literals;
    for (const std::string &path : {"in/a\0"s, std::string(4092, '/') + "in/a\n"}) {
        const tests::Pipe list;
        pfsdoc::batch::InputOptions options;
        options.list_files = {"/proc/self/fd/" + std::to_string(list.reading.get())};
        const auto size = static_cast<ssize_t>(path.size());
        EXPECT_EQ(::write(list.writing.get(), path.data(), path.size()), size);
        const auto inputs = tests::opened(options);
        EXPECT_EQ(inputs->next()->name, "in/a");
        EXPECT_EQ(::write(list.writing.get(), path.data(), path.size()), size);
        EXPECT_EQ(inputs->next()->name, "in/a (2)");
    }
}

TEST_F(Lists, do_not_lead_out_of_the_output)
{
    EXPECT_EQ(listed("../" + directory.filename().string() + "/in/a\n"),
              "\\x2E\\x2E/" + directory.filename().string() + "/in/a = 1\n");
}

} // namespace
