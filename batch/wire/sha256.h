// SHA-256, by which a manifest knows a file again. Test: tests/batch/run/batch_test.cpp.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

struct evp_md_ctx_st;

namespace pfsdoc::batch {

using Digest = std::array<uint8_t, 32>;

class Sha256 {
public:
    Sha256();
    void update(std::string_view bytes);
    // Once, and nothing after it.
    Digest finish();

private:
    struct Free {
        void operator()(evp_md_ctx_st *context) const;
    };
    std::unique_ptr<evp_md_ctx_st, Free> context_;
};

Digest sha256_of(std::string_view bytes);
// Of all that the descriptor has from its start; nothing where it cannot be read.
std::optional<Digest> digest_of_file(int descriptor);

// 64 hexadecimal digits, lower case.
std::string hex_of(const Digest &digest);
std::optional<Digest> digest_of_hex(std::string_view digits);

} // namespace pfsdoc::batch
