// The prose of a document in the formats that other commands read.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace bench {

// Each paragraph is one string without line breaks.
using Paragraphs = std::vector<std::string>;

std::string rich_text(const Paragraphs &paragraphs);
// WordPerfect 5.1: lines wrapped as it does, ending in soft returns.
std::string word_perfect(const Paragraphs &paragraphs);
// Word for DOS, which counts pages of 128 bytes in 16 bits: up to word_for_dos_limit.
std::string word_for_dos(const Paragraphs &paragraphs);
inline constexpr std::size_t word_for_dos_limit = std::size_t{8} << 20;
// An empty line after each paragraph.
std::string markdown(const Paragraphs &paragraphs);

} // namespace bench
