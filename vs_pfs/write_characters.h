// How PFS: WRITE and IBM Writing Assistant documents store a character and its attributes.
//
//   types 1 and 2   0x80-0xFF: the character is the low seven bits; an attribute byte follows
//   type 3          0xC0-0xFF: an attribute byte follows, two bits of which say what is to
//                   be taken off; the result, like every other byte, is then translated
//
// All other bytes are characters without attributes.
#pragma once

#include "filter_interface.h"

namespace vs_pfs {

struct WriteCharacter {
    uint8_t character;
    uint8_t charAttrSet; // internal attribute set
};

// Decodes the character that begins with `byte`. False: the data ended inside it.
bool decode_write_character(VwCharStream *stream, uint8_t byte, WriteCharacter &decoded,
                            VwInstance *instance);

} // namespace vs_pfs
