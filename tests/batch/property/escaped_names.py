"""Names of files as manifests write them, turned back into bytes: each \\xHH is one byte."""

import re
import unicodedata

ESCAPE = re.compile(rb'\\x([0-9A-F]{2})')


def unescaped(text):
    """The bytes of a name; ValueError where the text is no name's escaped form."""
    data = text.encode()
    name = ESCAPE.sub(lambda match: bytes([int(match[1], 16)]), data)
    if escaped(name) != text:
        raise ValueError('not in escaped form: %r' % text)
    return name


def escaped(name):
    parts = []
    while name:
        character, length = first_character(name)
        if character is None or must_be_escaped(character):
            parts += ['\\x%02X' % byte for byte in name[:length]]
        else:
            parts.append(character)
        name = name[length:]
    return ''.join(parts)


def first_character(name):
    """With its length in bytes; None for a byte that begins no character."""
    for length in range(1, 5):
        try:
            return name[:length].decode(), length
        except UnicodeDecodeError:
            pass
    return None, 1


def must_be_escaped(character):
    code = ord(character)
    return (character == '\\'
            or unicodedata.category(character) in ('Cc', 'Zl', 'Zp')
            or unicodedata.bidirectional(character) in ('LRE', 'RLE', 'LRO', 'RLO', 'PDF',
                                                        'LRI', 'RLI', 'FSI', 'PDI')
            or code in (0x061C, 0x200E, 0x200F, 0xFEFF)
            or 0xFDD0 <= code <= 0xFDEF
            or code & 0xFFFE == 0xFFFE)
