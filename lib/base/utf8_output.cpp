#include "lib/base/utf8_output.h"

#include <algorithm>

namespace pfsdoc::base {

namespace {

// Bytes converted between two looks at the buffer's size.
constexpr std::size_t stretch_size = 4096;
// Of a character of the code page, as UTF-8.
constexpr std::size_t longest_character = 3;

} // namespace

Utf8Output::Utf8Output(Output &output, const CodePage &code_page)
    : output_(output), code_page_(code_page)
{
}

void Utf8Output::spaces(std::size_t count)
{
    while (count != 0) {
        before_writing();
        line_open_ = true;
        const std::size_t written = std::min(count, stretch_size);
        buffer_.append(written, ' ');
        count -= written;
    }
}

void Utf8Output::text(std::string_view bytes)
{
    while (!bytes.empty()) {
        before_writing();
        line_open_ = true;
        const std::size_t count = std::min(bytes.size(), stretch_size);
        code_page_.append_utf8(buffer_, bytes.substr(0, count));
        bytes.remove_prefix(count);
    }
}

void Utf8Output::utf8(std::string_view encoded)
{
    while (!encoded.empty()) {
        before_writing();
        const std::size_t count = std::min(encoded.size(), stretch_size);
        line_open_ = encoded[count - 1] != '\n';
        buffer_.append(encoded.substr(0, count));
        encoded.remove_prefix(count);
    }
}

void Utf8Output::line_end()
{
    before_writing();
    line_open_ = false;
    buffer_.push_back('\n');
}

void Utf8Output::form_feed()
{
    before_writing();
    line_open_ = true;
    buffer_.push_back('\f');
}

void Utf8Output::separate()
{
    separator_due_ = true;
}

void Utf8Output::finish()
{
    separator_due_ = false;
    if (line_open_) {
        line_end();
    }
    hand_on();
}

bool Utf8Output::empty() const
{
    return empty_;
}

void Utf8Output::before_writing()
{
    empty_ = false;
    if (separator_due_) {
        separator_due_ = false;
        buffer_.push_back('\n');
    }
    if (buffer_.size() + stretch_size * longest_character > chunk_size) {
        hand_on();
    }
}

void Utf8Output::hand_on()
{
    if (!buffer_.empty()) {
        output_.write(buffer_);
        buffer_.clear();
    }
}

} // namespace pfsdoc::base
