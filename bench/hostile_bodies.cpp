#include "bench/hostile_bodies.h"

#include "bench/documents.h"
#include "vs_pfs.h"

#include <random>
#include <string_view>

namespace bench {

namespace {

using pfs_builder::Kind;
using namespace std::string_view_literals;

constexpr std::size_t write_margins_offset = 10;
constexpr std::size_t choice_margins_offset = 0;
constexpr std::size_t longer_than_a_buffer = 3000;

std::string repeat(std::string_view pattern, std::size_t size)
{
    std::string body;
    body.reserve(size + pattern.size());
    while (body.size() < size) {
        body += pattern;
    }
    return body;
}

// Picks from the tokens, so that the lookahead takes each line end for an attribute byte.
template <std::size_t N> std::string mix(const std::string_view (&tokens)[N], std::size_t size)
{
    std::minstd_rand random(1989);
    std::string body;
    body.reserve(size + N);
    while (body.size() < size) {
        body += tokens[random() % N];
    }
    return body;
}

std::string letters(std::size_t count)
{
    return std::string(count, 'a');
}

std::string spaces(std::size_t count)
{
    return std::string(count, ' ');
}

std::string assistant_mix(std::size_t size)
{
    static constexpr std::string_view tokens[] = {"a"sv,        "\x80\x0D"sv, "\xBF\x0D"sv,
                                                  "\x80\x80"sv, "\x80z"sv,    "\xC1\x04"sv,
                                                  "word"sv,     "\xA0\xA0"sv, "\x90\x0D"sv};
    return mix(tokens, size);
}

std::string choice_mix(std::size_t size)
{
    static constexpr std::string_view tokens[] = {"a"sv,        "\x80@@\x0D"sv,     "\xE1@B\x0C"sv,
                                                  "\xC1\x02"sv, "\x80@@@@@@\x0D"sv, "\x80\x80"sv,
                                                  "word"sv,     "\xC1HF\x0C"sv};
    return mix(tokens, size);
}

std::string assistant_long_lines(std::size_t size)
{
    return repeat(letters(longer_than_a_buffer) + "\x80\x0D", size);
}

std::string choice_long_chains(std::size_t size)
{
    return repeat("\x80" + std::string(longer_than_a_buffer, '@') + "\x0D", size);
}

std::string return_words(std::size_t size)
{
    return repeat(letters(longer_than_a_buffer) + "\x0D", size);
}

std::string return_spaces(std::size_t size)
{
    return repeat(spaces(longer_than_a_buffer) + "a\x0D", size);
}

std::string return_lines(std::size_t size)
{
    return repeat("a\x0D", size);
}

// Every second line end begins a scan of one buffer's length.
std::string assistant_stretches(std::size_t size)
{
    return repeat(repeat("a\x80\x0D", VW_STREAM_BUFFER_SIZE) + " ", size);
}

std::string choice_stretches(std::size_t size)
{
    return repeat(repeat("\x80@@\x0D", VW_STREAM_BUFFER_SIZE) + " ", size);
}

template <const char *Pattern> std::string pattern(std::size_t size)
{
    return repeat(Pattern, size);
}

constexpr char pair_0d[] = "\x80\x0D";
constexpr char letter_pair[] = "a\x80\x0D";
constexpr char pairs_of_80[] = "\x80\x80\x80\x80\x80\x0D";
constexpr char high_pair[] = "\xBF\x0D\x80\x0D";
constexpr char chain_0d[] = "\x80@@\x0D";
constexpr char letter_chain_0c[] = "a\x80@@\x0C";
constexpr char long_chain[] = "\x80@@@@@@@@@@@@@@@@\x0D";
constexpr char space_chain[] = "\xA0@@\x0D";
constexpr char chains_of_both_ends[] = "\xC1\x48@\x0C\x80\x60@@\x0D";

} // namespace

const std::vector<HostileBody> &hostile_bodies()
{
    constexpr Kind assistant = Kind::writing_assistant;
    constexpr Kind choice = Kind::first_choice_2;
    constexpr Kind write = Kind::write_b;
    static const std::vector<HostileBody> bodies = {
        {"80 0D", assistant, true, pattern<pair_0d>},
        {"a 80 0D", assistant, true, pattern<letter_pair>},
        {"80 80 80 80 80 0D", assistant, true, pattern<pairs_of_80>},
        {"BF 0D 80 0D", assistant, true, pattern<high_pair>},
        {"ax3000 80 0D", assistant, true, assistant_long_lines},
        {"pairs mixed", assistant, true, assistant_mix},
        {"pairs, 2 KB apart", assistant, false, assistant_stretches},
        {"80 40 40 0D", choice, true, pattern<chain_0d>},
        {"a 80 40 40 0C", choice, true, pattern<letter_chain_0c>},
        {"80 40x16 0D", choice, true, pattern<long_chain>},
        {"80 40x3000 0D", choice, true, choice_long_chains},
        {"A0 40 40 0D spaces", choice, true, pattern<space_chain>},
        {"C1 48 40 0C 80 60..", choice, true, pattern<chains_of_both_ends>},
        {"chains mixed", choice, true, choice_mix},
        {"chains, 2 KB apart", choice, false, choice_stretches},
        {"a 0D", write, false, return_lines},
        {"ax3000 0D", write, false, return_words},
        {"20x3000 a 0D", write, false, return_spaces},
        {"a 0D", choice, false, return_lines},
        {"ax3000 0D", choice, false, return_words},
        {"20x3000 a 0D", choice, false, return_spaces},
    };
    return bodies;
}

const std::vector<StoredMargins> &hostile_margins()
{
    static const std::vector<StoredMargins> margins = {
        {"2 to 3", 2, 3},
        {"10 to 80", 10, 80},
        {"1 to 32768", 1, 32768},   // the widest: 32767
        {"10 to 33000", 10, 33000}, // the right one is negative
    };
    return margins;
}

std::string hostile_document(const HostileBody &body, const StoredMargins &margins,
                             std::size_t size)
{
    Frame frame = frame_of(body.kind);
    const std::size_t offset =
        body.kind == Kind::first_choice_2 ? choice_margins_offset : write_margins_offset;
    const uint16_t words[] = {margins.left, margins.right};
    for (std::size_t i = 0; i < 2; ++i) {
        frame.head[offset + 2 * i] = static_cast<char>(words[i] & 0xFF);
        frame.head[offset + 2 * i + 1] = static_cast<char>(words[i] >> 8);
    }
    std::string document = std::move(frame.head);
    document += body.make(size - document.size() - frame.tail.size());
    return document + frame.tail;
}

} // namespace bench
