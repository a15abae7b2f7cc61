#include "batch/wire/sha256.h"

#include "lib/base/transfers.h"

#include <array>
#include <charconv>
#include <new>
#include <openssl/evp.h>
#include <stdexcept>
#include <sys/types.h>

namespace pfsdoc::batch {

namespace {

constexpr std::size_t digits_per_byte = 2;
constexpr int hexadecimal = 16;
constexpr std::size_t hashed_at_once = 65536;

void expect(int answer)
{
    if (answer != 1) {
        throw std::runtime_error("SHA-256 cannot be computed");
    }
}

// EVP_sha256() is a name, which the library would look up for each digest.
const EVP_MD *algorithm()
{
    static const EVP_MD *const fetched = EVP_MD_fetch(nullptr, "SHA256", nullptr);
    return fetched;
}

} // namespace

void Sha256::Free::operator()(evp_md_ctx_st *context) const
{
    EVP_MD_CTX_free(context);
}

Sha256::Sha256() : context_(EVP_MD_CTX_new())
{
    if (context_ == nullptr) {
        throw std::bad_alloc();
    }
    expect(EVP_DigestInit_ex(context_.get(), algorithm(), nullptr));
}

void Sha256::update(std::string_view bytes)
{
    expect(EVP_DigestUpdate(context_.get(), bytes.data(), bytes.size()));
}

Digest Sha256::finish()
{
    Digest digest{};
    unsigned size = 0;
    expect(EVP_DigestFinal_ex(context_.get(), digest.data(), &size));
    return digest;
}

Digest sha256_of(std::string_view bytes)
{
    Sha256 sum;
    sum.update(bytes);
    return sum.finish();
}

std::optional<Digest> digest_of_file(int descriptor)
{
    std::array<char, hashed_at_once> buffer;
    Sha256 sum;
    for (uint64_t offset = 0;;) {
        const ssize_t count = base::read_some_at(descriptor, buffer.data(), buffer.size(), offset);
        if (count <= 0) {
            return count == 0 ? std::optional(sum.finish()) : std::nullopt;
        }
        const auto length = static_cast<std::size_t>(count);
        sum.update({buffer.data(), length});
        offset += length;
    }
}

std::string hex_of(const Digest &digest)
{
    constexpr std::string_view digits = "0123456789abcdef";
    std::string hex;
    for (const uint8_t byte : digest) {
        hex.push_back(digits[byte / hexadecimal]);
        hex.push_back(digits[byte % hexadecimal]);
    }
    return hex;
}

std::optional<Digest> digest_of_hex(std::string_view digits)
{
    Digest digest{};
    if (digits.size() != digest.size() * digits_per_byte) {
        return std::nullopt;
    }
    for (uint8_t &byte : digest) {
        const char *end = digits.data() + digits_per_byte;
        if (std::from_chars(digits.data(), end, byte, hexadecimal).ptr != end) {
            return std::nullopt;
        }
        digits.remove_prefix(digits_per_byte);
    }
    return digest;
}

} // namespace pfsdoc::batch
