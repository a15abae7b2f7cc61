#include "pfsdoc/code_page.h"

#include "formats/code_page_437.h"

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstring>
#include <iconv.h>
#include <optional>

namespace pfsdoc {

namespace {

constexpr unsigned first_printable = 0x20;
constexpr unsigned last_one_byte_character = 0x7F;
constexpr unsigned last_two_byte_character = 0x7FF;
constexpr unsigned delete_byte = 0x7F;
constexpr unsigned first_c1_control = 0x80;
constexpr unsigned last_c1_control = 0x9F;

constexpr char continuation(unsigned character, unsigned shift)
{
    return static_cast<char>(0x80U | ((character >> shift) & 0x3FU));
}

// The bytes that stand for themselves.
constexpr bool is_ascii(char byte)
{
    return byte >= ' ' && byte <= '~';
}

constexpr bool is_ascii(unsigned byte)
{
    return byte >= first_printable && byte < delete_byte;
}

// Whether eight bytes all stand for themselves, which most text does: looked at together, as
// one number. Every other byte gets its highest bit when one is added, or a blank's value taken
// away; one that carries into its neighbour or borrows from it has got its own.
bool is_ascii_word(const char *bytes)
{
    constexpr uint64_t each_byte = 0x0101010101010101;
    constexpr uint64_t highest_bits = each_byte * 0x80;
    uint64_t word = 0;
    std::memcpy(&word, bytes, sizeof word);
    const uint64_t less = word - each_byte * first_printable;
    const uint64_t more = word + each_byte;
    return ((less | more) & highest_bits) == 0;
}

// How many stand for themselves before the first that does not.
std::size_t count_ascii(std::string_view bytes)
{
    std::size_t count = 0;
    while (count + sizeof(uint64_t) <= bytes.size() && is_ascii_word(bytes.data() + count)) {
        count += sizeof(uint64_t);
    }
    while (count < bytes.size() && is_ascii(bytes[count])) {
        ++count;
    }
    return count;
}

// The bytes that DOS shows as graphics, whatever the code page.
constexpr bool is_graphic(unsigned byte)
{
    return byte < first_printable || byte == delete_byte;
}

class Converter {
public:
    explicit Converter(const std::string &name) : handle_(::iconv_open("UTF-16LE", name.c_str())) {}
    ~Converter()
    {
        if (ok()) {
            ::iconv_close(handle_);
        }
    }
    Converter(const Converter &) = delete;
    Converter &operator=(const Converter &) = delete;

    bool ok() const
    {
        return handle_ != reinterpret_cast<iconv_t>(-1);
    }
    // A byte's character, the replacement for one without. Nothing where the byte is only the
    // beginning of a character, or is more than one.
    std::optional<char16_t> convert(unsigned byte)
    {
        char source = static_cast<char>(byte);
        std::array<unsigned char, 8> target{};
        char *from = &source;
        char *to = reinterpret_cast<char *>(target.data());
        std::size_t from_left = 1;
        std::size_t to_left = target.size();
        ::iconv(handle_, nullptr, nullptr, nullptr, nullptr);
        const bool failed = ::iconv(handle_, &from, &from_left, &to, &to_left) == failure ||
                            ::iconv(handle_, nullptr, nullptr, &to, &to_left) == failure;
        if (failed) {
            return errno == EILSEQ ? std::optional(CodePage::replacement) : std::nullopt;
        }
        if (target.size() - to_left != sizeof(char16_t)) {
            return std::nullopt;
        }
        return static_cast<char16_t>(target[0] | (target[1] << 8));
    }

private:
    static constexpr auto failure = static_cast<std::size_t>(-1);

    iconv_t handle_;
};

// Nothing where the set is not one byte a character, or no extension of ASCII.
std::optional<std::array<char16_t, 256>> all_characters(Converter &converter)
{
    std::array<char16_t, 256> characters = formats::code_page_437;
    for (unsigned byte = 0; byte < characters.size(); ++byte) {
        if (is_graphic(byte)) {
            continue;
        }
        const std::optional<char16_t> character = converter.convert(byte);
        if (!character || (is_ascii(byte) && *character != byte)) {
            return std::nullopt;
        }
        const bool is_control = *character >= first_c1_control && *character <= last_c1_control;
        characters[byte] = is_control ? CodePage::replacement : *character;
    }
    return characters;
}

bool is_number(const std::string &name)
{
    return !name.empty() && std::all_of(name.begin(), name.end(),
                                        [](char digit) { return digit >= '0' && digit <= '9'; });
}

Error unfit(const std::string &name, const std::string &what)
{
    return {ErrorKind::usage, "the character set \"" + name + "\" " + what,
            "iconv -l lists names; the code pages of DOS have numbers, such as 850"};
}

} // namespace

const CodePage &CodePage::ibm437()
{
    static const CodePage page("437", formats::code_page_437);
    return page;
}

Result<CodePage> CodePage::named(const std::string &name)
{
    if (name == ibm437().name()) {
        return ibm437();
    }
    Converter converter(is_number(name) ? "CP" + name : name);
    // iconv takes an empty name for the locale's own, and what follows a slash for a request.
    if (name.empty() || name.find('/') != std::string::npos || !converter.ok()) {
        return unfit(name, "is not known");
    }
    const std::optional<std::array<char16_t, 256>> characters = all_characters(converter);
    if (!characters) {
        return unfit(name, "does not extend ASCII with one byte for each character");
    }
    return CodePage(name, *characters);
}

CodePage::CodePage(std::string name, const std::array<char16_t, 256> &characters)
    : name_(std::move(name)), characters_(characters),
      is_complete_(std::find(characters.begin(), characters.end(), replacement) == characters.end())
{
    std::transform(characters.begin(), characters.end(), encoded_.begin(), encode);
}

CodePage::Encoded CodePage::encode(unsigned character)
{
    if (character <= last_one_byte_character) {
        return {{static_cast<char>(character)}, 1};
    }
    if (character <= last_two_byte_character) {
        return {{static_cast<char>(0xC0U | (character >> 6)), continuation(character, 0)}, 2};
    }
    return {{static_cast<char>(0xE0U | (character >> 12)), continuation(character, 6),
             continuation(character, 0)},
            3};
}

void CodePage::append_utf8(std::string &utf8, std::string_view bytes) const
{
    while (!bytes.empty()) {
        const std::size_t count = count_ascii(bytes);
        utf8.append(bytes, 0, count);
        if (count < bytes.size()) {
            const Encoded &encoded = encoded_[static_cast<unsigned char>(bytes[count])];
            utf8.append(encoded.bytes.data(), encoded.length);
        }
        bytes.remove_prefix(std::min(count + 1, bytes.size()));
    }
}

} // namespace pfsdoc
