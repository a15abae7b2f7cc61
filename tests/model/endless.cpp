#include "tests/model/endless.h"

#include <string_view>

namespace tests::model {

namespace {

using namespace std::string_view_literals;

// Lengths at which 16-bit counters wrap around, and near them.
uint32_t endless_length(Random &random)
{
    switch (random.below(4)) {
    case 0: return random.between(32750, 32790);
    case 1: return random.between(65520, 65560);
    default: return random.one_of({32767U, 32768U, 65535U, 65536U, 65537U});
    }
}

// Leading spaces, or one word for a lookahead to measure.
std::string endless_run(Random &random)
{
    const uint32_t length = endless_length(random);
    return std::string(length, random.one_of(" a\x40\x50\xC1\x00"sv));
}

// A line end that the lookahead takes for an attribute byte and its reader does not.
std::string hidden_line_end(Kind kind, Random &random)
{
    if (kind == Kind::assistant) {
        return {static_cast<char>(random.between(0x80, 0xBF)), '\x0D'};
    }
    return std::string("\xC1\x40\x41") + random.one_of("\x0C\x0D"sv);
}

// A word to whose end many line ends look ahead.
std::string endless_shared_word(Kind kind, Random &random)
{
    std::string word = "a\x0D";
    const uint32_t length = endless_length(random);
    const uint32_t line_ends_in = random.between(800, 20000);
    for (uint32_t i = 0; i < length; ++i) {
        word += random.below(line_ends_in) == 0 ? hidden_line_end(kind, random) : "a";
    }
    return word;
}

// A chain of header bytes whose 16-bit count wraps around to that of a short one.
std::string endless_chain(Random &random)
{
    return std::string(random.between(65536, 65538), '\x40') + "\x01";
}

std::string endless_piece(Kind kind, Random &random)
{
    switch (kind) {
    case Kind::choice_3: return random.percent(40) ? endless_chain(random) : endless_run(random);
    case Kind::assistant:
    case Kind::choice_byte_ruler:
    case Kind::choice_bit_ruler:
        return random.percent(50) ? endless_shared_word(kind, random) : endless_run(random);
    default: return endless_run(random);
    }
}

} // namespace

void add_endless_piece(Kind kind, std::string &body, Random &random)
{
    const std::string piece = endless_piece(kind, random);
    const std::size_t line_end = body.find_first_of("\x0C\x0D", random.below(body.size() + 1));
    const bool at_line_start = line_end != std::string::npos && random.percent(70);
    body.insert(at_line_start ? line_end + 1 : random.below(body.size() + 1), piece);
}

} // namespace tests::model
