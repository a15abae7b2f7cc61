// pfsbuild: writes a document from its description. See docs/man/pfsbuild.1.
//
// The document is written under a temporary name in the same directory and renamed into place
// when it is complete, so that a failure leaves the previous file intact.
// Test: tests/builder/program_test.cpp.
#include "builder/build.h"
#include "builder/description.h"

#include <CLI/CLI.hpp>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>

namespace {

constexpr int exit_ok = 0;
constexpr int exit_usage = 2;
constexpr int exit_unreadable = 3;
constexpr int exit_faulty = 4;
constexpr int exit_not_written = 7;
constexpr int exit_internal = 70;

constexpr const char *standard_stream = "-";
constexpr const char *standard_input_name = "standard input";

struct Arguments {
    std::string description;
    std::string document;
};

int fail(int code, const std::string &message)
{
    std::cerr << "pfsbuild: " << message << '\n';
    return code;
}

std::optional<std::string> read_all(std::istream &stream)
{
    std::string text((std::istreambuf_iterator<char>(stream)), std::istreambuf_iterator<char>());
    return stream.bad() ? std::nullopt : std::optional<std::string>(std::move(text));
}

std::optional<std::string> read_file(const std::string &path)
{
    std::error_code error;
    if (std::filesystem::is_directory(path, error)) {
        return std::nullopt;
    }
    std::ifstream stream(path, std::ios::binary);
    return stream ? read_all(stream) : std::nullopt;
}

// Included files are looked up in the description's directory.
pfs_builder::IncludeReader include_reader(const std::string &description)
{
    const std::filesystem::path directory = std::filesystem::path(description).parent_path();
    return [directory](const std::string &path) -> std::optional<pfs_builder::Included> {
        const std::string name = (directory / path).lexically_normal().string();
        auto text = read_file(name);
        if (!text) {
            return std::nullopt;
        }
        return pfs_builder::Included{name, std::move(*text)};
    };
}

bool write_to(std::ostream &stream, const std::vector<uint8_t> &bytes)
{
    const std::string characters(bytes.begin(), bytes.end());
    stream.write(characters.data(), static_cast<std::streamsize>(characters.size()));
    stream.flush();
    return stream.good();
}

// Whether the path is something that accepts bytes but is not a file to be replaced.
bool is_device_or_pipe(const std::filesystem::path &path)
{
    std::error_code error;
    const std::filesystem::file_status status = std::filesystem::status(path, error);
    return std::filesystem::exists(status) && !std::filesystem::is_regular_file(status) &&
           !std::filesystem::is_directory(status);
}

bool write_in_location(const std::filesystem::path &path, const std::vector<uint8_t> &bytes)
{
    std::ofstream stream(path, std::ios::binary | std::ios::trunc);
    return stream && write_to(stream, bytes);
}

bool write_file(const std::string &path, const std::vector<uint8_t> &bytes)
{
    if (is_device_or_pipe(path)) {
        return write_in_location(path, bytes);
    }
    std::error_code error;
    // Follows symbolic links, so that their target is replaced and not the link.
    std::filesystem::path target = std::filesystem::weakly_canonical(path, error);
    target = error ? std::filesystem::path(path) : target;
    const std::filesystem::path temporary = target.string() + ".part";
    bool written = write_in_location(temporary, bytes);
    if (written) {
        std::filesystem::rename(temporary, target, error);
        written = !error;
    }
    if (!written) {
        std::filesystem::remove(temporary, error);
    }
    return written;
}

int write_document(const std::string &path, const std::vector<uint8_t> &bytes)
{
    if (path == standard_stream) {
        return write_to(std::cout, bytes)
                   ? exit_ok
                   : fail(exit_not_written, "standard output: it cannot be written; look where "
                                            "it leads");
    }
    return write_file(path, bytes)
               ? exit_ok
               : fail(exit_not_written, path + ": it cannot be written; look at its directory "
                                               "and the room left there");
}

int run(const Arguments &arguments)
{
    const bool from_standard_input = arguments.description == standard_stream;
    const std::string name = from_standard_input ? standard_input_name : arguments.description;
    const auto text = from_standard_input ? read_all(std::cin) : read_file(arguments.description);
    if (!text) {
        return fail(exit_unreadable, name + ": it cannot be read; look at its name and rights");
    }
    const pfs_builder::Parsed parsed =
        pfs_builder::parse_description(*text, name, include_reader(arguments.description));
    if (parsed.fault) {
        return fail(exit_faulty, to_string(*parsed.fault));
    }
    const pfs_builder::Built built = pfs_builder::build(parsed.document);
    if (built.fault) {
        return fail(exit_faulty, to_string(*built.fault));
    }
    return write_document(arguments.document, built.bytes);
}

int run_program(int argc, char **argv)
{
    CLI::App app("Writes a PFS document from its description.", "pfsbuild");
    Arguments arguments;
    app.add_option("DESCRIPTION", arguments.description, "the description; - is standard input")
        ->required();
    app.add_option("DOCUMENT", arguments.document, "the document; - is standard output")
        ->required();
    app.set_version_flag("--version", std::string("pfsbuild ") + PFSBUILD_VERSION);
    try {
        app.parse(argc, argv);
    } catch (const CLI::Success &done) {
        return app.exit(done); // --help and --version
    } catch (const CLI::ParseError &error) {
        return fail(exit_usage, std::string(error.what()) + "; see pfsbuild --help");
    }
    return run(arguments);
}

} // namespace

int main(int argc, char **argv)
{
    try {
        return run_program(argc, argv);
    } catch (...) {
        static_cast<void>(std::fputs(
            "pfsbuild: it failed, most likely for want of memory; give it more\n", stderr));
        return exit_internal;
    }
}
