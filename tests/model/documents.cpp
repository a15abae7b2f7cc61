#include "tests/model/documents.h"

#include "tests/model/bodies.h"
#include "tests/support/raw_documents.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace tests::model {

namespace {

using namespace std::string_view_literals;

void put(std::string &document, std::size_t offset, std::string_view bytes)
{
    document.replace(offset, bytes.size(), bytes);
}

uint16_t random_column(Random &random)
{
    return random.percent(70) ? random.one_of<uint16_t>({0, 0xFFFF, 0x7FFF, 0x8000, 0x8001, 1})
                              : static_cast<uint16_t>(random.below(0x10000));
}

// Left and right margin, mostly so close together that many lines look wrapped.
void put_margins(std::string &header, std::size_t offset, Random &random)
{
    auto left = static_cast<uint16_t>(random.percent(50) ? 1 : random.between(1, 12));
    auto right = static_cast<uint16_t>(left + random.between(3, 45));
    if (random.percent(12)) {
        left = random_column(random);
    }
    if (random.percent(12)) {
        right = random_column(random);
    }
    put(header, offset, word(left) + word(right));
}

void put_header_lines(std::string &header, const std::array<std::size_t, 4> &offsets,
                      Random &random)
{
    if (!random.percent(25)) {
        return;
    }
    for (const std::size_t offset : offsets) {
        if (!random.percent(45)) {
            continue;
        }
        const uint32_t length = random.percent(95) ? random.between(1, 20) : random.below(256);
        header[offset] = static_cast<char>(length);
        for (uint32_t i = 1; i <= std::min(length, 70U); ++i) {
            header[offset + i] =
                random.percent(90) ? static_cast<char>('A' + random.below(26)) : random.byte();
        }
    }
}

void put_write_ruler(std::string &header, Random &random)
{
    constexpr std::size_t columns = 78;
    constexpr std::size_t kinds_offset = 16;
    constexpr std::size_t positions_offset = 172;
    if (random.percent(50)) {
        return;
    }
    const uint32_t density = random.percent(90) ? random.between(2, 15) : 100;
    const bool ordered = random.percent(80);
    const std::string_view marks = random.percent(80) ? "\x0F\x0F\x10\x11"sv : "\x0F\x10"sv;
    for (std::size_t i = 0; i < columns; ++i) {
        if (random.percent(density)) {
            header[kinds_offset + 2 * i] = random.one_of(marks);
        }
        const auto column = static_cast<uint16_t>(
            ordered ? i : random.one_of({random.below(80), random.below(65536)}));
        put(header, positions_offset + 2 * i, word(column));
    }
}

void put_random_bytes(std::string &header, std::size_t offset, std::size_t count, Random &random)
{
    for (std::size_t i = 0; i < count; ++i) {
        header[offset + i] =
            random.percent(70) ? static_cast<char>(random.below(4)) : random.byte();
    }
}

std::string_view signature_of(Kind kind, Random &random)
{
    switch (kind) {
    case Kind::assistant: return "IBM   ";
    case Kind::professional_1: return "TYPE 3";
    case Kind::professional_2: return "TYPE 4";
    default: return random.percent(50) ? "WRD PC" : "TYPE 2";
    }
}

std::string write_header(Kind kind, Random &random)
{
    std::string header(1024, '\0');
    put_margins(header, 10, random);
    put_write_ruler(header, random);
    put_header_lines(header, {328, 402, 484, 558}, random);
    put(header, 641, signature_of(kind, random));
    header[649] = kind == Kind::write_1 ? '1' : '2';
    put_random_bytes(header, 822, 16, random);
    put_random_bytes(header, 963, 4, random);
    for (uint32_t i = random.percent(80) ? 0 : random.below(10); i > 0; --i) {
        header += random.byte();
    }
    header += random.percent(98) ? "\x0C" : "";
    for (uint32_t i = random.percent(75) ? 0 : random.between(1, 3); i > 0; --i) {
        header += random_margin_record(random);
    }
    return header;
}

char generation_of(Kind kind, Random &random)
{
    switch (kind) {
    case Kind::choice_3: return '3';
    case Kind::choice_bit_ruler: return '2';
    default:
        return random.one_of("\0"
                             "1"
                             "4"
                             "\xFF"sv);
    }
}

void put_choice_ruler(std::string &header, Random &random)
{
    constexpr std::size_t offset = 366;
    constexpr std::size_t size = 99;
    if (random.percent(40)) {
        return;
    }
    const uint32_t density = random.percent(85) ? 8 : 100;
    for (std::size_t i = 0; i < size; ++i) {
        if (random.percent(density)) {
            header[offset + i] = random.byte();
        }
    }
}

std::string choice_header(Kind kind, Random &random)
{
    std::string header(512, '\0');
    put_margins(header, 0, random);
    put(header, 9, "GERBILDOC");
    header[18] = generation_of(kind, random);
    put_header_lines(header, {28, 110, 192, 274}, random);
    for (std::size_t i = 356; i < 366; ++i) {
        header[i] = random.one_of("CRLUB cbu"sv);
    }
    put_choice_ruler(header, random);
    return header;
}

// A position in the body, or for a few changes anywhere.
std::size_t random_position(const std::string &document, std::size_t body, Random &random)
{
    if (random.percent(20) || body >= document.size()) {
        return random.below(document.size());
    }
    return body + random.below(document.size() - body);
}

void mutate(std::string &document, std::size_t body, Random &random)
{
    if (document.empty()) {
        return;
    }
    const std::size_t at = random_position(document, body, random);
    const std::size_t length = random.between(1, 12);
    switch (random.below(6)) {
    case 0: document[at] = random.byte(); break;
    case 1: document[at] = static_cast<char>(document[at] ^ (1 << random.below(8))); break;
    case 2: document.insert(at, 1, random.byte()); break;
    case 3: document.erase(at, length); break;
    case 4:
        document.insert(at, document.substr(random_position(document, body, random), length));
        break;
    default: {
        const std::string block = document.substr(at, length);
        document.erase(at, length);
        document.insert(random.below(document.size() + 1), block);
        break;
    }
    }
}

void cut(std::string &document, std::size_t body, Random &random)
{
    if (!document.empty()) {
        document.resize(random.percent(20) ? random.below(document.size())
                                           : random_position(document, body, random));
    }
}

} // namespace

std::string random_document(Kind kind, Random &random)
{
    std::string document =
        is_choice(kind) ? choice_header(kind, random) : write_header(kind, random);
    const std::size_t body = document.size();
    document += random_body(kind, random);
    for (uint32_t i = random.percent(70) ? 0 : random.between(1, 6); i > 0; --i) {
        mutate(document, body, random);
    }
    if (random.percent(15)) {
        cut(document, body, random);
    }
    return document;
}

} // namespace tests::model
