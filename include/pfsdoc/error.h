// Errors are values: what went wrong, a remedy, and a kind that determines the command's exit
// code. Tests: those of every file that returns one.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <variant>

namespace pfsdoc {

enum class ErrorKind {
    usage,          // the command line asks for something impossible
    input,          // the input cannot be read
    not_a_document, // the input is not a document of a known kind
    damaged,        // the document is truncated; the part that could be read was delivered
    limit,          // something is larger than a limit allows
    output,         // the output cannot be written
    internal,       // an internal error, including a missing or unsuitable module
    interrupted     // by the user
};

struct Error {
    ErrorKind kind;
    std::string what;
    std::string remedy;               // empty if there is none
    std::optional<uint64_t> offset{}; // in the file, in bytes, if the error has a position there
};

// Stable: scripts rely on them, and the manual page pfsdoc(1) lists them.
constexpr int exit_code(ErrorKind kind)
{
    switch (kind) {
    case ErrorKind::usage: return 2;
    case ErrorKind::input: return 3;
    case ErrorKind::not_a_document: return 4;
    case ErrorKind::damaged: return 5;
    case ErrorKind::limit: return 6;
    case ErrorKind::output: return 7;
    case ErrorKind::interrupted: return 130;
    case ErrorKind::internal: break;
    }
    return 70;
}

// A value, or the error that prevented it. value() only if ok(), error() only if not.
template <typename T> class [[nodiscard]] Result {
public:
    Result(T value) : content_(std::in_place_index<0>, std::move(value)) {}
    Result(Error error) : content_(std::in_place_index<1>, std::move(error)) {}

    bool ok() const
    {
        return content_.index() == 0;
    }
    T &value()
    {
        return std::get<0>(content_);
    }
    const T &value() const
    {
        return std::get<0>(content_);
    }
    const Error &error() const
    {
        return std::get<1>(content_);
    }

private:
    std::variant<T, Error> content_;
};

// Success, or the error that stood in its way: for what has no value. error() must match ok().
class [[nodiscard]] Status {
public:
    Status() = default; // success
    Status(Error error) : error_(std::move(error)) {}
    // What became of it, without its value.
    template <typename T> Status(const Result<T> &result)
    {
        if (!result.ok()) {
            error_ = result.error();
        }
    }

    bool ok() const
    {
        return !error_;
    }
    const Error &error() const
    {
        return *error_;
    }

private:
    std::optional<Error> error_;
};

} // namespace pfsdoc
