#include "tests/model/bodies.h"

#include "tests/model/endless.h"

#include <array>
#include <initializer_list>
#include <string_view>

namespace tests::model {

namespace {

using namespace std::string_view_literals;

// Bytes with a meaning in one kind or another, for bodies and changes that hit one.
constexpr std::string_view telling_bytes =
    "\x00\x01\x02\x03\x07\x08\x0C\x0D\x0E\x0F\x10\x18\x1F\x20\x2A\x40\x41\x48\x4C\x54\x5B\x5D"
    "\x80\x8C\x8D\x8E\xA0\xAA\xB0\xBF\xC0\xC2\xC5\xCD\xE0\xE9\xF0\xFF"sv;

constexpr std::array commands{"*N*"sv,
                              "*NEW PAGE*"sv,
                              "*new page*"sv,
                              "*PAGE*"sv,
                              "*JUSTIFY YES*"sv,
                              "*JUSTIFY N*"sv,
                              "*JY NO*"sv,
                              "*jy y*"sv,
                              "*YES*"sv,
                              "*Y*"sv,
                              "*NO*"sv,
                              "*PRINTER 27,15*"sv,
                              "*P \x0D\xC1\x01 *"sv,
                              "*CENTER*"sv,
                              "*C*"sv,
                              "*Graph pie\x0E*"sv,
                              "*G *"sv,
                              "*JOIN B:LETTER.DOC*"sv,
                              "*J x*"sv,
                              "*RIGHT*"sv,
                              "*r*"sv,
                              "*NEW  PAGE*"sv,
                              "*NEW LINE*"sv,
                              "*NEWPAGE*"sv,
                              "*PRINTER*"sv,
                              "*PRINTERXY*"sv,
                              "*JUSTIFY MAYBE*"sv,
                              "*JUSTIFY C*"sv,
                              "* N*"sv,
                              "**"sv,
                              "*NEW PAGE *"sv,
                              "*NEW N*"sv};

// In this order with every compiler; the operands of a + may be evaluated in any order.
std::string joined(std::initializer_list<std::string> parts)
{
    std::string whole;
    for (const std::string &part : parts) {
        whole += part;
    }
    return whole;
}

std::string random_word(Random &random)
{
    std::string word;
    const uint32_t length = random.percent(95) ? random.between(1, 8) : random.between(9, 40);
    for (uint32_t i = 0; i < length; ++i) {
        word += static_cast<char>('a' + random.below(26));
    }
    return word;
}

// A command, or something close to one.
std::string random_command(Random &random)
{
    std::string command(commands[random.below(commands.size())]);
    if (random.percent(70)) {
        return command;
    }
    const uint32_t at = random.below(command.size());
    switch (random.below(4)) {
    case 0: command.erase(at, 1); break;
    case 1: command.insert(at, 1, random.one_of(telling_bytes)); break;
    case 2: command[at] = random.byte(); break;
    default: command.resize(at); break;
    }
    return command;
}

std::string random_spaces(Random &random)
{
    return std::string(random.between(1, 6), ' ');
}

// A byte with the high bit, followed by the kind's attribute bytes.
class Prefixed {
public:
    Prefixed(Kind text_kind, Random &number_source) : kind(text_kind), random(number_source) {}

    std::string character(uint8_t byte)
    {
        const char prefix = static_cast<char>(byte | (kind == Kind::assistant ? 0xC0 : 0x80));
        return prefix + (is_choice(kind) ? chain() : std::string(1, attribute()));
    }

    // Letters that mostly share their attributes, as a writer's do.
    std::string word()
    {
        std::string word;
        const std::string shared = is_choice(kind) ? chain() : std::string(1, attribute());
        for (const char letter : random_word(random)) {
            const bool same = random.percent(85);
            const std::string one = character(static_cast<uint8_t>(letter));
            word += same ? one.front() + shared : one;
        }
        return word;
    }

private:
    char attribute()
    {
        return random.percent(60) ? static_cast<char>(random.below(0x20)) : random.byte();
    }

    std::string chain()
    {
        constexpr uint8_t another = 0x40;
        std::string bytes;
        char byte = attribute();
        while (random.percent(25)) {
            bytes += static_cast<char>(byte | another);
            byte = attribute();
        }
        return bytes + (random.percent(90) ? static_cast<char>(byte & ~another) : byte);
    }

    Kind kind;
    Random &random;
};

// The pieces that all kinds have in common, out of 100; the rest is the kind's own.
constexpr uint32_t common_share = 75;

std::string common_piece(Kind kind, Random &random)
{
    const uint32_t choice = random.below(common_share);
    Prefixed prefixed(kind, random);
    if (choice < 28) {
        return random_word(random);
    }
    if (choice < 46) {
        return " ";
    }
    if (choice < 50) {
        return random_spaces(random);
    }
    if (choice < 58) {
        return prefixed.word();
    }
    if (choice < 62) {
        return prefixed.character(static_cast<uint8_t>(random.one_of(" *\x0C\x0D\x0E\x7F\x60"sv)));
    }
    if (choice < 67) {
        return random_command(random);
    }
    if (choice < 70) {
        return std::string(1, random.one_of(telling_bytes));
    }
    if (choice < 72) {
        return std::string(1, random.byte());
    }
    if (choice < 73) {
        return "\x0C";
    }
    return std::string(1, random.percent(10) ? '\x0E' : '*');
}

std::string write_piece(Random &random)
{
    switch (random.below(8)) {
    case 0: return "\x0D\x0D";
    case 1: return "\x0D" + random_spaces(random);
    case 2: return "\x0D" + random_spaces(random) + "\x0D";
    case 3: return " \x0D";
    default: return "\x0D";
    }
}

std::string assistant_piece(Random &random)
{
    switch (random.below(6)) {
    case 0: return std::string(1, static_cast<char>(random.between(0x0F, 0x1F)));
    case 1: return std::string(1, static_cast<char>(random.between(0x80, 0xBF)));
    case 2:
        return {static_cast<char>(random.between(0xC0, 0xFF)),
                static_cast<char>(random.below(0x40))};
    default: return write_piece(random);
    }
}

std::string professional_piece(Random &random)
{
    switch (random.below(8)) {
    case 0: return random_margin_record(random);
    case 1: return joined({random_margin_record(random), random_spaces(random)});
    case 2:
        return joined({std::string(1, static_cast<char>(random.below(4))), random_spaces(random)});
    case 3:
        return {static_cast<char>(random.between(0x80, 0xFF)),
                static_cast<char>(0x40 | random.below(0x20))};
    default: return std::string(1, static_cast<char>(random.below(4)));
    }
}

std::string choice_piece(Random &random)
{
    std::string end(1, random.one_of("\x0C\x0D"sv));
    switch (random.below(8)) {
    case 0: return end + end;
    case 1: return end + random_spaces(random);
    case 2: return end + random_spaces(random) + end;
    case 3: return " " + end;
    default: return end;
    }
}

std::string random_ruler(Random &random)
{
    std::string ruler(1, random.one_of("\x0C\x0D\x0F\x2C\x4C\x8C\x8D"sv));
    ruler += random_word(random).substr(0, 3);
    const uint32_t columns = random.percent(90) ? random.below(40) : random.below(400);
    const bool many_tabs = random.percent(20);
    for (uint32_t i = 0; i < columns; ++i) {
        ruler += many_tabs ? random.one_of("TTTT-"sv) : random.one_of("----------TT[]\xC2\xC5"sv);
    }
    return ruler + "\x0D";
}

// The header chain of a First Choice 3 line.
std::string random_chain(Random &random)
{
    switch (random.below(8)) {
    case 0:
    case 1:
    case 2: return "\x40\x01";
    case 3: return std::string("\x40\x00", 2);
    case 4: return std::string(1, random.one_of("\x00\x01\x10\x18\x1C"sv));
    case 5: return {static_cast<char>(random.byte() | 0x40), random.byte()};
    case 6:
        return joined({std::string(random.between(1, 4), '\x50'),
                       std::string(1, random.one_of("\x00\x01\x03"sv))});
    default: return std::string(1, random.byte());
    }
}

std::string choice_3_piece(Random &random)
{
    switch (random.below(12)) {
    case 0: return joined({"\x0D", random_ruler(random), random_chain(random)});
    case 1: return joined({"\x0D\x08", random_word(random), "\x0D", random_chain(random)});
    case 2: return joined({"\x0D\x48\x41", random_spaces(random), "\x0D", random_chain(random)});
    case 3: return " \x0D" + random_chain(random);
    case 4: return joined({"\x0D", random_chain(random), random_spaces(random)});
    case 5: return joined({"\x0D", random_chain(random), random_spaces(random), "\x0D"});
    default: return "\x0D" + random_chain(random);
    }
}

std::string random_piece(Kind kind, Random &random)
{
    if (random.percent(common_share)) {
        return common_piece(kind, random);
    }
    switch (kind) {
    case Kind::write_1:
    case Kind::write_2: return write_piece(random);
    case Kind::assistant: return assistant_piece(random);
    case Kind::professional_1:
    case Kind::professional_2: return professional_piece(random);
    case Kind::choice_byte_ruler:
    case Kind::choice_bit_ruler: return choice_piece(random);
    case Kind::choice_3: break;
    }
    return choice_3_piece(random);
}

std::string structured_body(Kind kind, uint32_t pieces, Random &random)
{
    std::string body = kind == Kind::choice_3 ? random_chain(random) : "";
    if (!is_choice(kind) && random.percent(70)) {
        body += "\x0D";
    }
    for (uint32_t i = 0; i < pieces; ++i) {
        body += random_piece(kind, random);
    }
    return body;
}

// All from a few bytes, so that every sequence of them occurs.
std::string narrow_body(uint32_t length, Random &random)
{
    std::string alphabet(random.between(2, 8), ' ');
    for (char &byte : alphabet) {
        byte = random.percent(75) ? random.one_of(telling_bytes) : random.byte();
    }
    std::string body;
    for (uint32_t i = 0; i < length; ++i) {
        body += random.one_of(alphabet);
    }
    return body;
}

std::string uniform_body(uint32_t length, Random &random)
{
    std::string body;
    for (uint32_t i = 0; i < length; ++i) {
        body += random.byte();
    }
    return body;
}

uint32_t random_length(Random &random)
{
    const uint32_t choice = random.below(1000);
    if (choice < 650) {
        return random.below(50);
    }
    return choice < 960 ? random.below(200) : random.below(2000);
}

} // namespace

std::string random_margin_record(Random &random)
{
    constexpr char mark = '\x07';
    const auto small = [&random] { return static_cast<char>(random.below(70)); };
    switch (random.below(5)) {
    case 0:
    case 1: return {mark, '\x05', '\x01', small(), small()};
    case 2: {
        const uint32_t more = random.below(8);
        return std::string{mark, static_cast<char>(3 + more), '\x02'} + std::string(more, 'f');
    }
    case 3: {
        const uint32_t more = random.below(5);
        return std::string{mark, static_cast<char>(5 + more), '\x01', small(), small()} +
               std::string(more, '\0');
    }
    default: return {mark, static_cast<char>(random.below(20)), random.one_of("\0\1\2\xFF"sv)};
    }
}

std::string random_body(Kind kind, Random &random)
{
    constexpr uint32_t endless_piece_in = 800;
    const uint32_t length = random_length(random);
    const uint32_t style = random.below(100);
    std::string body = style < 75   ? structured_body(kind, length, random)
                       : style < 94 ? narrow_body(2 * length, random)
                                    : uniform_body(2 * length, random);
    if (random.below(endless_piece_in) == 0) {
        add_endless_piece(kind, body, random);
    }
    if (random.percent(80)) {
        body += '\x0E';
    }
    if (random.percent(8)) {
        body += joined({structured_body(kind, 10, random), random.percent(50) ? "\x0E" : ""});
    }
    return body;
}

} // namespace tests::model
