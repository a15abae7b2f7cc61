// What the shared library shows. Everything in it is hidden but what bears PFSDOC_API, and
// only these headers use it: what they do not declare, a program cannot come to rely on.
//
// A class with virtual functions bears it even where all of it is inline, so that the program
// and the library agree on what type an object is. Plain records, templates and constexpr
// functions have nothing to show. Test: tests/install/exported_names.sh.
#pragma once

#if defined(__GNUC__)
#define PFSDOC_API __attribute__((visibility("default")))
#else
#define PFSDOC_API
#endif
