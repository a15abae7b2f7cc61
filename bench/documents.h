// The documents to be measured: ordinary ones of any size, made by the document builder.
//
// The builder keeps a record for each character, so it makes one piece of about a megabyte
// and repeats it. Every piece ends with its paragraph, so what follows does not change how it
// is read.
#pragma once

#include "builder/build.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace bench {

enum class Text {
    prose,
    attributed,  // a fifth of the characters are bold, underlined or both
    short_lines, // 30 columns
    commands     // one after every few words
};
inline constexpr std::array<Text, 4> texts = {Text::prose, Text::attributed, Text::short_lines,
                                              Text::commands};
const char *text_name(Text text);

// The parts of a document around its text.
struct Frame {
    std::string head; // everything before the first line
    std::string tail; // the end byte, and what must precede it
};
Frame frame_of(pfs_builder::Kind kind, pfs_builder::Margins margins = {});

// Makes documents of one kind and text; the shorter ones are prefixes of the longer.
class DocumentMaker {
public:
    // `piece_size` is for documents that are smaller than a piece.
    DocumentMaker(pfs_builder::Kind kind, Text text, std::size_t piece_size = largest_piece);

    // A document of at least `size` bytes, and at most one piece more.
    std::string make(std::size_t size) const;

private:
    static constexpr std::size_t largest_piece = std::size_t{1} << 20;

    Frame frame_;
    std::string piece_;
};

std::string make_document(pfs_builder::Kind kind, Text text, std::size_t size);

// A letter of a few paragraphs with a header line, about 2 KB of text.
std::string make_letter(pfs_builder::Kind kind);

// The paragraphs of a prose document of about that size, each as one line.
std::vector<std::string> make_plain_prose(std::size_t size);

} // namespace bench
