// A paragraph as a string, for programs that want only its text.
// Test: tests/lib/reading/paragraph_text_test.cpp.
#pragma once

#include "pfsdoc/code_page.h"
#include "pfsdoc/export.h"
#include "pfsdoc/paragraph.h"

#include <string>

namespace pfsdoc {

// The text pieces in UTF-8, one after the other, without embedded commands. A tab is a tab,
// byte 0 a space, and there is no other control character.
PFSDOC_API std::string plain_text(const Paragraph &paragraph,
                                  const CodePage &code_page = CodePage::ibm437());

} // namespace pfsdoc
