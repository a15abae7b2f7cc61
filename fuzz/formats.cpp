// Whole files, read by the library and written in each of its formats: once as a whole, once
// block by block with a stop that the input selects.
#include "pfsdoc/document.h"
#include "pfsdoc/writer.h"

#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

namespace {

using pfsdoc::Block;
using pfsdoc::Document;

// Counts, so that writing is not optimised away and nothing is stored.
class Drain final : public pfsdoc::Output {
public:
    void write(std::string_view bytes) override
    {
        size_ += bytes.size();
    }

private:
    std::size_t size_ = 0;
};

void require(bool holds)
{
    if (!holds) {
        std::abort();
    }
}

void write_in_every_format(Document &document)
{
    for (const pfsdoc::Format *format : pfsdoc::formats()) {
        if (format->make_writer == nullptr) {
            continue;
        }
        Drain output;
        pfsdoc::WriterOptions options;
        options.raw_lines = true;
        auto writer = format->make_writer(output, {document.kind(), "letter"}, options);
        require(writer.ok());
        static_cast<void>(document.read(*writer.value()));
    }
}

std::vector<Block> rest_of(Document &document, std::size_t most)
{
    std::vector<Block> blocks;
    while (blocks.size() < most) {
        auto block = document.next();
        if (!block.ok() || !block.value()) {
            break;
        }
        blocks.push_back(std::move(*block.value()));
    }
    return blocks;
}

// After resuming come the blocks that would have come without the stop.
void resume_in_another(const std::vector<uint8_t> &bytes, Document &document, std::size_t stop)
{
    rest_of(document, stop);
    const auto place = document.place();
    require(place.ok());
    auto other = Document::from_bytes(bytes);
    require(other.ok());
    const auto token = pfsdoc::ResumeToken::parse(place.value().text());
    require(token.ok() && other.value().resume(token.value()).ok());
    require(rest_of(other.value(), SIZE_MAX) == rest_of(document, SIZE_MAX));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, std::size_t size)
{
    const std::vector<uint8_t> bytes(data, data + size);
    auto document = Document::from_bytes(bytes);
    if (document.ok()) {
        write_in_every_format(document.value());
        resume_in_another(bytes, document.value(), data[size - 1] % 8U);
    }
    return 0;
}
