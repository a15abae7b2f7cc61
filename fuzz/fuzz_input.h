// How a fuzz target interprets its input: first a few parameters of fixed size, then the text.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace fuzz {

// Consumes the input from its front. Missing bytes read as 0.
class Input {
public:
    Input(const uint8_t *data, std::size_t size);

    uint8_t byte();
    uint16_t word(); // low byte first
    std::string take(std::size_t count);
    std::string rest();
    bool empty() const;

private:
    const uint8_t *data;
    std::size_t size;
};

// How a document is framed and read, in seven bytes: kind, left margin, right margin, header
// and footer lines, behaviour.
struct Frame {
    uint8_t kind = 0; // which of the kinds that the target reads
    uint16_t left_margin = 0;
    uint16_t right_margin = 0;
    uint8_t lines = 0; // bits 0 to 3: which header and footer lines are present
    uint8_t behaviour = 0;

    bool stop() const;              // at every paragraph end
    uint32_t most_per_read() const; // bytes in each host read
};
inline constexpr std::size_t frame_size = 7;

Frame take_frame(Input &input);

// A document of the frame's kind, counted from `first_type` over `types` format types.
std::string write_family_document(const Frame &frame, int first_type, int types,
                                  const std::string &body);
// A First Choice document of the generation.
std::string choice_family_document(const Frame &frame, char generation, const std::string &body);
// Of any kind of either family, as the frame says.
std::string document_of_any_kind(const Frame &frame, const std::string &body);

} // namespace fuzz
