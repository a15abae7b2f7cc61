// Thrown by a sink to end reading: Document::read returns the error and delivers nothing more.
// Test: tests/lib/reading/document_test.cpp.
#pragma once

#include "pfsdoc/error.h"
#include "pfsdoc/export.h"

#include <exception>
#include <utility>

namespace pfsdoc {

class PFSDOC_API ReadingStopped : public std::exception {
public:
    explicit ReadingStopped(Error error) : error_(std::move(error)) {}

    const Error &error() const
    {
        return error_;
    }
    const char *what() const noexcept override
    {
        return error_.what.c_str();
    }

private:
    Error error_;
};

} // namespace pfsdoc
