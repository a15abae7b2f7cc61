// Makes a document, or reads one once, for counting instructions.
//
//   read_once make READER TEXT BYTES > FILE     the reader's kind and the text by their numbers
//   read_once floor|module|silent FILE
//   read_once names                             the readers and texts, by their numbers
#include "bench/benchmarks.h"

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>

namespace bench {

namespace {

constexpr int usage_error = 2;

int print_names()
{
    for (const ReaderCase &reader : reader_cases()) {
        std::printf("reader:%s\n", reader.name);
    }
    for (const Text text : texts) {
        std::printf("text:%s\n", text_name(text));
    }
    return 0;
}

int make(char **arguments)
{
    const ReaderCase &reader = reader_cases().at(std::strtoul(arguments[0], nullptr, 10));
    const std::size_t text = std::strtoul(arguments[1], nullptr, 10);
    const std::size_t size = std::strtoul(arguments[2], nullptr, 10);
    const std::string document = make_document(reader.kind, texts.at(text), size);
    return std::fwrite(document.data(), 1, document.size(), stdout) == document.size() ? 0 : 1;
}

int read_document(const std::string &way, const char *path)
{
    std::ifstream file(path, std::ios::binary);
    const std::string document((std::istreambuf_iterator<char>(file)), {});
    const Subject subject;
    AppendingHost host(document.size());
    if (way == "floor") {
        measure_floor(subject, document, host);
    } else if (way == "module") {
        measure_module(subject, document, host);
    } else {
        measure_silent(subject, document);
    }
    return 0;
}

int run(int count, char **arguments)
{
    const std::string what = count > 1 ? arguments[1] : "";
    if (what == "names") {
        return print_names();
    }
    if (what == "make" && count == 5) {
        return make(arguments + 2);
    }
    if ((what == "floor" || what == "module" || what == "silent") && count == 3) {
        return read_document(what, arguments[2]);
    }
    static_cast<void>(std::fprintf(stderr, "usage: read_once floor|module|silent FILE\n"));
    return usage_error;
}

} // namespace

} // namespace bench

int main(int count, char **arguments)
{
    return bench::run(count, arguments);
}
