#include "fuzz/fuzz_input.h"

#include "tests/support/raw_documents.h"

#include <algorithm>

namespace fuzz {
namespace {

constexpr uint8_t behaviour_stop = 0x01;
constexpr uint32_t pieces[] = {UINT32_MAX, 1, 2, 3, 5, 7, 100, 2047};
constexpr int header_footer_lines = 4;
constexpr const char *line_text = "Page *N* of\x80\xFFtwo";

bool has_line(const Frame &frame, int line)
{
    return ((frame.lines >> line) & 1) != 0;
}

} // namespace

Input::Input(const uint8_t *data_, std::size_t size_) : data(data_), size(size_) {}

uint8_t Input::byte()
{
    if (size == 0) {
        return 0;
    }
    --size;
    return *data++;
}

uint16_t Input::word()
{
    const uint8_t low = byte();
    return static_cast<uint16_t>(low | (byte() << 8));
}

std::string Input::take(std::size_t count)
{
    const std::size_t taken = std::min(count, size);
    std::string bytes(data, data + taken);
    data += taken;
    size -= taken;
    return bytes;
}

std::string Input::rest()
{
    return take(size);
}

bool Input::empty() const
{
    return size == 0;
}

bool Frame::stop() const
{
    return (behaviour & behaviour_stop) != 0;
}

uint32_t Frame::most_per_read() const
{
    return pieces[(behaviour >> 1) & 7];
}

Frame take_frame(Input &input)
{
    Frame frame;
    frame.kind = input.byte();
    frame.left_margin = input.word();
    frame.right_margin = input.word();
    frame.lines = input.byte();
    frame.behaviour = input.byte();
    return frame;
}

std::string write_family_document(const Frame &frame, int first_type, int types,
                                  const std::string &body)
{
    tests::Patches patches = {tests::write_margins(frame.left_margin, frame.right_margin)};
    for (int line = 0; line < header_footer_lines; ++line) {
        if (has_line(frame, line)) {
            patches.push_back(tests::write_header_line(line, line_text));
        }
    }
    return tests::write_document(first_type + frame.kind % types, body, patches);
}

std::string choice_family_document(const Frame &frame, char generation, const std::string &body)
{
    tests::Patches patches = {tests::choice_margins(frame.left_margin, frame.right_margin)};
    for (int line = 0; line < header_footer_lines; ++line) {
        if (has_line(frame, line)) {
            patches.push_back(tests::choice_header_line(line, line_text));
        }
    }
    return tests::choice_document(generation, body, patches);
}

std::string document_of_any_kind(const Frame &frame, const std::string &body)
{
    constexpr int write_family_types = 5;
    constexpr char generations[] = {'1', '2', '3'};
    const std::size_t kind = frame.kind % (write_family_types + sizeof generations);
    return kind < write_family_types
               ? write_family_document(frame, static_cast<int>(kind) + 1, 1, body)
               : choice_family_document(frame, generations[kind - write_family_types], body);
}

} // namespace fuzz
