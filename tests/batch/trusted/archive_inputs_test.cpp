// Archives of a batch: whole ones of every sort, written by libarchive, and those that were made
// to do harm or were cut.
#include "sandbox/shadow_memory.h"
#include "tests/batch/trusted/batch_folder.h"

#include <archive.h>
#include <archive_entry.h>
#include <chrono>
#include <clocale>
#include <csignal>
#include <memory>
#include <sys/resource.h>

namespace {

using tests::BatchFolder;
using tests::line_of;
using tests::lines_of;
namespace fs = std::filesystem;

struct Member {
    std::string name;
    std::string content;
    unsigned type = AE_IFREG;
    std::string link = "";
    bool is_hard_link = false;
};

struct Sort {
    const char *ending;
    int format;
    int filter;
};

const Sort sorts[] = {
    {".zip", ARCHIVE_FORMAT_ZIP, ARCHIVE_FILTER_NONE},
    {".ZIP", ARCHIVE_FORMAT_ZIP, ARCHIVE_FILTER_NONE},
    {".tar", ARCHIVE_FORMAT_TAR_USTAR, ARCHIVE_FILTER_NONE},
    {".tar", ARCHIVE_FORMAT_TAR_PAX_INTERCHANGE, ARCHIVE_FILTER_NONE},
    {".tar", ARCHIVE_FORMAT_TAR_GNUTAR, ARCHIVE_FILTER_NONE},
    {".tar.gz", ARCHIVE_FORMAT_TAR_USTAR, ARCHIVE_FILTER_GZIP},
    {".tgz", ARCHIVE_FORMAT_TAR_USTAR, ARCHIVE_FILTER_GZIP},
    {".tar.bz2", ARCHIVE_FORMAT_TAR_USTAR, ARCHIVE_FILTER_BZIP2},
    {".tar.xz", ARCHIVE_FORMAT_TAR_USTAR, ARCHIVE_FILTER_XZ},
    {".tar.zst", ARCHIVE_FORMAT_TAR_USTAR, ARCHIVE_FILTER_ZSTD},
};
const Sort zip = sorts[0];
const Sort tar = sorts[2];
const Sort tar_gz = sorts[5];

using Archive = std::unique_ptr<archive, int (*)(archive *)>;

Archive new_archive(const std::string &path, const Sort &sort, const char *options = nullptr)
{
    Archive made(::archive_write_new(), ::archive_write_free);
    ::archive_write_set_format(made.get(), sort.format);
    ::archive_write_add_filter(made.get(), sort.filter);
    if (options != nullptr) {
        EXPECT_EQ(::archive_write_set_options(made.get(), options), ARCHIVE_OK)
            << ::archive_error_string(made.get());
        ::archive_write_set_passphrase(made.get(), "secret");
    }
    EXPECT_EQ(::archive_write_open_filename(made.get(), path.c_str()), ARCHIVE_OK);
    return made;
}

void begin(archive *made, const Member &member, uint64_t size)
{
    archive_entry *entry = ::archive_entry_new();
    ::archive_entry_set_pathname(entry, member.name.c_str());
    ::archive_entry_set_filetype(entry, member.type);
    ::archive_entry_set_perm(entry, 0644);
    ::archive_entry_set_size(entry, static_cast<la_int64_t>(size));
    if (member.is_hard_link) {
        ::archive_entry_set_hardlink(entry, member.link.c_str());
    } else if (!member.link.empty()) {
        ::archive_entry_set_symlink(entry, member.link.c_str());
    }
    EXPECT_EQ(::archive_write_header(made, entry), ARCHIVE_OK) << ::archive_error_string(made);
    ::archive_entry_free(entry);
}

void add(archive *made, const Member &member)
{
    begin(made, member, member.content.size());
    ::archive_write_data(made, member.content.data(), member.content.size());
}

void write_archive(const std::string &path, const Sort &sort, const std::vector<Member> &members,
                   const char *options = nullptr)
{
    const Archive made = new_archive(path, sort, options);
    for (const Member &member : members) {
        add(made.get(), member);
    }
}

std::string bytes_of(const std::string &path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

class Archives : public BatchFolder {};

TEST_F(Archives, of_every_sort_are_read)
{
    const std::vector<Member> members = {
        {"b.doc", "B"}, {"dir", "", AE_IFDIR}, {"dir/a.doc", std::string(100'000, 'A')}, {"e", ""}};
    for (const Sort &sort : sorts) {
        const std::string name = std::string("old") + sort.ending;
        write_archive(name, sort, members);
        EXPECT_EQ(found({name}), name + "/b.doc = B\n" + name + "/dir/a.doc = " +
                                     std::string(100'000, 'A') + "\n" + name + "/e = \n")
            << name << " of format " << sort.format;
    }
}

TEST_F(Archives, are_found_in_folders_and_lists)
{
    fs::create_directory("in");
    write("in/a", "1");
    write("in/c", "3");
    write_archive("in/b.zip", zip, {{"x", "2"}});
    EXPECT_EQ(found({"in"}), "in/a = 1\n"
                             "in/b.zip/x = 2\n"
                             "in/c = 3\n");
    EXPECT_EQ(listed("in/b.zip\nin/a"), "in/b.zip/x = 2\n"
                                        "in/a = 1\n");
}

TEST_F(Archives, without_the_ending_and_in_archives_are_files)
{
    write_archive("inner.zip", zip, {{"x", "1"}});
    const std::string inner = bytes_of("inner.zip");
    write_archive("outer.tar", tar, {{"inner.zip", inner}});
    fs::rename("inner.zip", "inner.doc");
    EXPECT_EQ(found({"inner.doc", "outer.tar"}),
              "inner.doc = " + inner + "\nouter.tar/inner.zip = " + inner + "\n");
}

TEST_F(Archives, have_members_whose_names_lead_nowhere_else)
{
    write_archive("a.tar", tar,
                  {{"../../up", "1"},
                   {"/etc/passwd", "2"},
                   {"x/../../y", "3"},
                   {"..\\dos\\up", "4"},
                   {"./z//z", "5"},
                   {"M\xC3\xBCller", "6"},
                   {"M\x81ller", "7"},
                   {"esc\x1B[2J", "8"}});
    EXPECT_EQ(found({"a.tar"}), "a.tar/\\x2E\\x2E/\\x2E\\x2E/up = 1\n"
                                "a.tar/etc/passwd = 2\n"
                                "a.tar/x/\\x2E\\x2E/\\x2E\\x2E/y = 3\n"
                                "a.tar/\\x2E\\x2E/dos/up = 4\n"
                                "a.tar/z/z = 5\n"
                                "a.tar/M\xC3\xBCller = 6\n"
                                "a.tar/M\\x81ller = 7\n"
                                "a.tar/esc\\x1B[2J = 8\n");
}

TEST_F(Archives, in_zip_keep_names_in_utf8)
{
    ASSERT_NE(std::setlocale(LC_CTYPE, "C.UTF-8"), nullptr); // for the writer
    write_archive("a.zip", zip, {{"M\xC3\xBCller", "1"}}, "hdrcharset=UTF-8");
    std::setlocale(LC_CTYPE, "C");
    EXPECT_EQ(found({"a.zip"}), "a.zip/M\xC3\xBCller = 1\n");
}

TEST_F(Archives, number_members_of_one_name)
{
    write_archive("a.tar", tar, {{"a.doc", "1"}, {"./a.doc", "2"}, {"a (2).doc", "3"}});
    EXPECT_EQ(found({"a.tar", "./a.tar"}), "a.tar/a.doc = 1\n"
                                           "a.tar/a (2).doc = 2\n"
                                           "a.tar/a (2) (2).doc = 3\n"
                                           "a (2).tar/a.doc = 1\n"
                                           "a (2).tar/a (2).doc = 2\n"
                                           "a (2).tar/a (2) (2).doc = 3\n");
}

TEST_F(Archives, give_members_without_a_name_one)
{
    write_archive("a.tar", tar, {{".", "1"}, {"./", "2"}, {"/", "3"}});
    const std::string lines = found({"a.tar"});
    EXPECT_EQ(lines.find("a.tar/ "), std::string::npos) << lines;
    EXPECT_TRUE(lines.starts_with("a.tar/unnamed")) << lines;
}

// A line of the manifest has each name twice, and each byte may take five there.
TEST_F(Archives, have_no_names_that_no_line_could_hold)
{
    write_archive("a.tar", sorts[3], {{std::string(60'000, 'x'), "1"}});
    pfsdoc::batch::InputOptions options;
    options.paths = {"a.tar"};
    const auto inputs = tests::opened(options);
    const std::optional<pfsdoc::batch::BatchInput> input = inputs->next();
    ASSERT_TRUE(input.has_value());
    EXPECT_EQ(input->source, "a.tar!/" + std::string(16'384, 'x'));
    EXPECT_LT(input->name.size(), 256U);
}

TEST_F(Archives, have_errors_for_links_and_devices)
{
    write_archive("a.tar", tar,
                  {{"soft", "", AE_IFLNK, "/etc/passwd"},
                   {"hard", "", AE_IFREG, "/etc/passwd", true},
                   {"pipe", "", AE_IFIFO},
                   {"disk", "", AE_IFBLK},
                   {"file", "1"}});
    write_archive("b.zip", zip, {{"soft", "", AE_IFLNK, "/etc/passwd"}});
    EXPECT_EQ(found({"a.tar", "b.zip"}),
              "a.tar/soft !skipped is a link inside an archive\n"
              "a.tar/hard !skipped is a link inside an archive\n"
              "a.tar/pipe !skipped is a device or a pipe inside an archive\n"
              "a.tar/disk !skipped is a device or a pipe inside an archive\n"
              "a.tar/file = 1\n"
              "b.zip/soft !skipped is a link inside an archive\n");
}

TEST_F(Archives, have_errors_for_encrypted_members)
{
    write_archive("a.zip", zip, {{"a", "secret"}, {"b", "secret"}}, "zip:encryption=zipcrypt");
    EXPECT_EQ(found({"a.zip"}), "a.zip/a !input is encrypted\n"
                                "a.zip/b !input is encrypted\n");
}

TEST_F(Archives, that_are_none_are_errors)
{
    write("garbage.zip", "This is a letter, not an archive.");
    write("empty.tar", "");
    fs::create_directory("folder.zip");
    EXPECT_EQ(found({"garbage.zip", "empty.tar", "folder.zip"}),
              "garbage.zip !input is not a zip or tar archive, despite its name\n"
              "empty.tar !input is not a zip or tar archive, despite its name\n");
}

TEST_F(Archives, have_errors_for_members_that_are_too_large)
{
    pfsdoc::batch::InputOptions options;
    options.max_input = 1000;
    for (const Sort &sort : {zip, tar, tar_gz}) {
        write_archive("a", sort,
                      {{"a", std::string(1001, 'x')}, {"b", std::string(1000, 'y')}, {"c", "z"}});
        const std::string name = std::string("a") + sort.ending;
        fs::rename("a", name);
        options.paths = {name};
        EXPECT_EQ(lines_of(options), name + "/a !limit has more than the 1000 bytes allowed\n" +
                                         name + "/b = " + std::string(1000, 'y') + "\n" + name +
                                         "/c = z\n");
    }
}

// The size that a header of tar tells, in octal digits, and the sum that has to fit it.
void set_tar_size(std::string &header, const std::string &digits)
{
    constexpr std::size_t size_place = 124;
    constexpr std::size_t sum_place = 148;
    header.replace(size_place, digits.size(), digits);
    header.replace(sum_place, 8, 8, ' ');
    unsigned sum = 0;
    for (const char byte : header) {
        sum += static_cast<unsigned char>(byte);
    }
    std::array<char, 7> sum_digits{};
    std::snprintf(sum_digits.data(), sum_digits.size(), "%06o", sum);
    header.replace(sum_place, sum_digits.size(), sum_digits.data(), sum_digits.size());
}

TEST_F(Archives, are_not_believed_a_huge_size)
{
    write_archive("a.tar", tar, {{"a", "1"}});
    std::string header = bytes_of("a.tar").substr(0, 512);
    set_tar_size(header, "77777777777"); // 8 GB
    write("a.tar", header + std::string(512, 'x'));
    pfsdoc::batch::InputOptions options;
    options.paths = {"a.tar"};
    EXPECT_EQ(lines_of(options), "a.tar/a !limit has more than the 4294967296 bytes allowed\n"
                                 "a.tar !damaged is a damaged archive, and breaks off; nothing in "
                                 "it was read\n");
    options.max_input = UINT64_MAX;
    EXPECT_EQ(lines_of(options), "a.tar/a !damaged is damaged inside its archive\n"
                                 "a.tar !damaged is a damaged archive, and breaks off; nothing in "
                                 "it was read\n");
}

TEST_F(Archives, that_are_cut_give_what_they_have)
{
    const std::string first(5000, 'x');
    const std::string second(5000, 'y');
    write_archive("a.tar", tar, {{"a", first}, {"b", second}});
    // The header of each member takes 512 bytes and its content ten times that.
    fs::resize_file("a.tar", 512 * 13);
    EXPECT_EQ(found({"a.tar"}), "a.tar/a = " + first +
                                    "\na.tar/b !damaged is damaged inside its archive\n"
                                    "a.tar !damaged is a damaged archive, and breaks off behind "
                                    "its first file\n");
}

// Nothing is lost without a word, and nothing waits or ends the batch, wherever it was cut.
TEST_F(Archives, that_are_cut_anywhere_are_told)
{
    for (const Sort &sort : {zip, tar_gz, sorts[7], sorts[8], sorts[9]}) {
        const std::string name = std::string("a") + sort.ending;
        write_archive(name, sort, {{"a", "1"}, {"b", "2"}});
        const std::string whole = bytes_of(name);
        for (std::size_t length = 0; length < whole.size() / 2; length += 7) {
            write(name, whole.substr(0, length));
            EXPECT_NE(found({name}).find(" !"), std::string::npos)
                << name << " cut to " << length << " bytes";
        }
    }
}

// What is recorded of them must not claim an output.
TEST_F(Archives, that_are_cut_are_unreadable_and_say_where_they_were_found)
{
    fs::create_directory("in");
    write_archive("in/a.tar", tar,
                  {{"a", std::string(5000, 'x')}, {"./b\\c", "y"}, {"c", std::string(5000, 'z')}});
    fs::resize_file("in/a.tar", 512 * 16);
    write("in/no.zip", "nothing");
    pfsdoc::batch::InputOptions options;
    options.paths = {"in"};
    EXPECT_EQ(tests::sources_of(options), "in/a.tar/a < in/a.tar!/a\n"
                                          "in/a.tar/b/c < in/a.tar!/./b\\c\n"
                                          "in/a.tar/c < in/a.tar!/c unreadable\n"
                                          "in/a.tar < in/a.tar unreadable\n"
                                          "in/no.zip < in/no.zip unreadable\n");
    options.paths = {"in/a.tar"};
    const std::string lines = lines_of(options);
    EXPECT_EQ(lines.substr(lines.rfind("a.tar !")),
              "a.tar !damaged is a damaged archive, and breaks off behind its first 2 files\n");
}

// They were said to be no archives.
TEST_F(Archives, that_are_cut_in_their_compression_are_damaged)
{
    std::string content(20'000, '\0');
    for (std::size_t i = 0; i < content.size(); ++i) {
        content[i] = static_cast<char>(i * i * 31 / 257);
    }
    for (const Sort &sort : {tar_gz, sorts[7], sorts[8]}) {
        const std::string name = std::string("a") + sort.ending;
        write_archive(name, sort, {{"a", content}});
        write(name, bytes_of(name).substr(0, 300));
        EXPECT_EQ(found({name}), name +
                                     " !damaged is a damaged archive, and breaks off; nothing in "
                                     "it was read\n");
    }
}

// Little endian.
std::string number(uint64_t value, std::size_t size)
{
    std::string bytes;
    for (std::size_t i = 0; i < size; ++i) {
        bytes.push_back(static_cast<char>(value >> 8 * i));
    }
    return bytes;
}

// One member, and a directory that lists it under each of the names.
std::string repeating_zip(const std::vector<std::string> &names, const std::string &program)
{
    // Version, flags, method, time and date; checksum and sizes of no bytes.
    const std::string facts =
        number(20, 2) + std::string(6, '\0') + number(33, 2) + std::string(12, '\0');
    std::string zip_file =
        program + "PK\3\4" + facts + number(names[0].size(), 2) + number(0, 2) + names[0];
    const std::size_t start = zip_file.size();
    for (const std::string &name : names) {
        zip_file += "PK\1\2" + number(20, 2) + facts + number(name.size(), 2) +
                    std::string(12, '\0') + number(program.size(), 4) + name;
    }
    const std::size_t size = zip_file.size() - start;
    return zip_file + "PK\5\6" + number(0, 4) + number(names.size(), 2) + number(names.size(), 2) +
           number(size, 4) + number(start, 4) + number(0, 2);
}

// All but one of them were left out without a word.
TEST_F(Archives, whose_entries_share_a_member_have_a_line_for_each)
{
    for (const std::string &program : {std::string(), std::string("a program")}) {
        write("a.zip", repeating_zip({"a", "b", "d/", "c"}, program));
        EXPECT_EQ(found({"a.zip"}),
                  "a.zip/a = \n"
                  "a.zip/b !damaged has the bytes of another file of its archive\n"
                  "a.zip/c !damaged has the bytes of another file of its archive\n")
            << program;
    }
}

TEST_F(Archives, without_a_file_have_a_line_all_the_same)
{
    write_archive("a.tar", tar, {});
    write_archive("b.zip", zip, {{"folder/", "", AE_IFDIR}});
    EXPECT_EQ(found({"a.tar", "b.zip"}), "a.tar !skipped is an archive without a file in it\n"
                                         "b.zip !skipped is an archive without a file in it\n");
}

TEST_F(Archives, with_any_byte_changed_do_no_harm)
{
    write_archive("a.zip", zip, {{"a", "1"}, {"b", "2"}});
    const std::string whole = bytes_of("a.zip");
    for (std::size_t place = 0; place < whole.size(); place += 3) {
        std::string changed = whole;
        changed[place] = static_cast<char>(~changed[place]);
        write("a.zip", changed);
        const std::string lines = found({"a.zip"});
        EXPECT_TRUE(lines.empty() || lines.starts_with("a.zip")) << lines;
    }
}

// What the processes that were started and are gone held at most, in bytes.
uint64_t most_memory(int who)
{
    rusage usage{};
    ::getrusage(who, &usage);
    return static_cast<uint64_t>(usage.ru_maxrss) * 1024;
}

void write_zeros(const std::string &path, const Sort &sort, uint64_t size)
{
    const Archive made = new_archive(path, sort);
    begin(made.get(), {"zeros", ""}, size);
    const std::string part(1 << 20, '\0');
    for (uint64_t written = 0; written < size; written += part.size()) {
        ::archive_write_data(made.get(), part.data(), part.size());
    }
    add(made.get(), {"behind", "1"});
}

TEST_F(Archives, that_are_bombs_cost_nothing_but_time)
{
    constexpr uint64_t size = uint64_t{256} << 20;
    pfsdoc::batch::InputOptions options;
    options.max_input = 1 << 20;
    for (const Sort &sort : {zip, tar_gz}) {
        const std::string name = std::string("a") + sort.ending;
        write_zeros(name, sort, size);
        ASSERT_LT(fs::file_size(name), size / 100);
        options.paths = {name};
        EXPECT_EQ(lines_of(options), name +
                                         "/zeros !limit has more than the 1048576 bytes allowed\n" +
                                         name + "/behind = 1\n");
    }
    EXPECT_LT(most_memory(RUSAGE_SELF), size);
    EXPECT_LT(most_memory(RUSAGE_CHILDREN), size);
}

TEST_F(Archives, may_not_have_too_much_together)
{
    const std::string content(1000, 'x');
    write_archive("a.zip", zip, {{"a", content}, {"b", content}, {"c", content}});
    write_zeros("b.tar.gz", tar_gz, 1 << 20);
    pfsdoc::batch::InputOptions options;
    options.max_input = 1000;
    options.paths = {"a.zip"};
    options.max_archive = 2999;
    EXPECT_EQ(lines_of(options),
              "a.zip/a = " + content + "\na.zip/b = " + content +
                  "\na.zip !limit unpacks to more than 2999 bytes; the rest is not read\n");
    options.max_archive = 3000;
    EXPECT_EQ(lines_of(options),
              "a.zip/a = " + content + "\na.zip/b = " + content + "\na.zip/c = " + content + "\n");
    options.paths = {"b.tar.gz"};
    options.max_archive = 100'000;
    EXPECT_EQ(lines_of(options), "b.tar.gz/zeros !limit has more than the 1000 bytes allowed\n"
                                 "b.tar.gz !limit unpacks to more than 100000 bytes; the rest is "
                                 "not read\n");
}

TEST_F(Archives, hold_large_members_outside_memory)
{
    constexpr uint64_t size = uint64_t{40} << 20;
    write_zeros("a.tar.gz", tar_gz, size);
    pfsdoc::batch::InputOptions options;
    options.paths = {"a.tar.gz"};
    auto inputs = tests::opened(options);
    const std::optional<pfsdoc::batch::BatchInput> input = inputs->next();
    ASSERT_TRUE(input.has_value() && !input->error);
    EXPECT_EQ(input->size, size);
    EXPECT_EQ(tests::content_of(input->file), std::string(size, '\0'));
    const fs::path link = "/proc/self/fd/" + std::to_string(input->file.get());
    EXPECT_EQ(fs::read_symlink(link).string().find("memfd"), std::string::npos);
}

TEST_F(Archives, may_have_many_members)
{
    std::vector<Member> members;
    std::string expected;
    for (int number = 0; number < 10'000; ++number) {
        members.push_back({std::to_string(number), "x"});
        expected += "a.tar/" + std::to_string(number) + " = x\n";
    }
    write_archive("a.tar", tar, members);
    const uint64_t before_it = most_memory(RUSAGE_SELF);
    EXPECT_EQ(found({"a.tar"}), expected);
    EXPECT_LT(most_memory(RUSAGE_SELF) - before_it, uint64_t{16} << 20);
}

// More than a pipe holds, so that the reader waits to be ended.
TEST_F(Archives, whose_reader_dies_give_one_error_for_the_rest)
{
    const std::string large(1 << 20, 'x');
    write_archive("a.tar", tar, {{"a", "1"}, {"b", large}, {"c", large}});
    write("z", "2");
    pfsdoc::batch::InputOptions options;
    options.paths = {"a.tar", "z"};
    auto inputs = tests::opened(options);
    EXPECT_EQ(line_of(*inputs->next()), "a.tar/a = 1\n");
    const pid_t reader = tests::archive_reader();
    ASSERT_GT(reader, 1) << "this kernel does not tell a process's children";
    ASSERT_EQ(::kill(reader, SIGKILL), 0);
    EXPECT_EQ(line_of(*inputs->next()),
              "a.tar !damaged made its reader end behind its first file\n");
    EXPECT_EQ(line_of(*inputs->next()), "z = 2\n");
    EXPECT_FALSE(inputs->next().has_value());
}

// The run goes on with the other inputs.
TEST_F(Archives, whose_reader_makes_no_progress_give_one_error_for_the_rest)
{
    const std::string large(1 << 20, 'x');
    write_archive("a.tar", tar, {{"a", "1"}, {"b", large}, {"c", large}});
    write("z", "2");
    pfsdoc::batch::InputOptions options;
    options.paths = {"a.tar", "z"};
    options.max_time = std::chrono::milliseconds(200);
    auto inputs = tests::opened(options);
    EXPECT_EQ(line_of(*inputs->next()), "a.tar/a = 1\n");
    ASSERT_EQ(::kill(tests::archive_reader(), SIGSTOP), 0);
    EXPECT_EQ(line_of(*inputs->next()),
              "a.tar !limit takes too long to unpack; the rest is not read\n");
    EXPECT_EQ(tests::archive_reader(), 0);
    EXPECT_EQ(line_of(*inputs->next()), "z = 2\n");
    EXPECT_FALSE(inputs->next().has_value());
}

// A tar archive of one file "a", compressed with a header that asks for a dictionary of 64 MB.
std::string greedy_archive()
{
    constexpr std::string_view digits =
        "fd377a585a0000016922de36020021011c00000010cf58cce027ff00545d00308033501868898301"
        "dce26e210546577cd872fefd8ad3c076cb8c01fcba260b65881331956d278e04ebcdbf7aacc0b50f"
        "3fa31b3c47f10a3f32bd3c17d46e6d098d9d48777af4a8a8a41f8444132cbb1f85270000133d5c18"
        "00016c8050000000cca488c63e300d8b020000000001595a";
    std::string bytes;
    for (std::size_t i = 0; i < digits.size(); i += 2) {
        bytes.push_back(
            static_cast<char>(std::stoi(std::string(digits.substr(i, 2)), nullptr, 16)));
    }
    return bytes;
}

TEST_F(Archives, that_need_too_much_memory_are_an_error)
{
    if (pfsdoc::sandbox::memory_is_shadowed) {
        GTEST_SKIP() << "a sanitizer's memory is not limited";
    }
    write("a.tar.xz", greedy_archive());
    write("z", "2");
    EXPECT_EQ(found({"a.tar.xz", "z"}), "a.tar.xz/a = 1\nz = 2\n");
    pfsdoc::batch::InputOptions options;
    options.paths = {"a.tar.xz", "z"};
    for (const uint64_t megabytes : {uint64_t{0}, uint64_t{20}}) {
        options.max_memory = megabytes << 20;
        EXPECT_EQ(lines_of(options),
                  "a.tar.xz !limit needs more memory to unpack than the limit\nz = 2\n");
    }
}

TEST_F(Archives, are_read_without_a_sandbox_where_that_is_asked_for)
{
    write_archive("a.zip", zip, {{"a", "1"}});
    pfsdoc::batch::InputOptions options;
    options.paths = {"a.zip"};
    options.sandbox = pfsdoc::batch::SandboxMode::off;
    EXPECT_EQ(lines_of(options), "a.zip/a = 1\n");
}

TEST_F(Archives, that_nobody_reads_on_leave_no_process)
{
    const std::string large(1 << 20, 'x');
    write_archive("a.tar", tar, {{"a", "1"}, {"b", large}});
    pfsdoc::batch::InputOptions options;
    options.paths = {"a.tar"};
    auto inputs = tests::opened(options);
    EXPECT_TRUE(inputs->next().has_value());
    EXPECT_GT(tests::archive_reader(), 1);
    inputs.reset();
    EXPECT_EQ(tests::archive_reader(), 0);
}

} // namespace
