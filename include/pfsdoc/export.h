// What the shared library exports. Everything without PFSDOC_API is hidden, and only these headers
// use it, so a program cannot come to rely on anything that they do not declare.
//
// A class with virtual functions has it even if it is entirely inline, so that program and
// library agree on an object's type. Plain structs, templates and constexpr functions have
// nothing to export. Test: tests/install/exported_names.sh.
#pragma once

#if defined(__GNUC__)
#define PFSDOC_API __attribute__((visibility("default")))
#else
#define PFSDOC_API
#endif
