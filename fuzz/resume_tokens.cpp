// Texts that claim to be resume tokens: refused, or read from there to the end.
#include "pfsdoc/document.h"

#include <cstdint>
#include <cstdlib>
#include <string>

namespace {

// "One", "Two" and a third line, of PFS: WRITE B. The token identifies it by size and content, so
// most inputs are refused; the dictionary and the corpus contain its mark.
pfsdoc::Document small_document()
{
    std::string bytes(1025, '\0');
    bytes.replace(641, 6, "TYPE 2");
    bytes[649] = '2';
    bytes[1024] = '\f';
    bytes += "\rOne\r\rTwo\rlast\r\x0E";
    auto document = pfsdoc::Document::from_bytes({bytes.begin(), bytes.end()});
    if (!document.ok()) {
        std::abort();
    }
    return std::move(document.value());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, std::size_t size)
{
    const auto token = pfsdoc::ResumeToken::parse({reinterpret_cast<const char *>(data), size});
    if (!token.ok()) {
        return 0;
    }
    pfsdoc::Document document = small_document();
    if (!document.resume(token.value()).ok()) {
        return 0;
    }
    for (;;) {
        const auto block = document.next();
        if (!block.ok() || !block.value()) {
            return 0;
        }
    }
}
