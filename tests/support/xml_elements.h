// XML parsed by the tests' own small, strict reader: anything not well-formed, or with a character
// that XML does not allow, is a fault. Only what our writers produce is supported: no comments, no
// CDATA sections, no document type.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace tests {

struct XmlElement {
    std::string name;
    std::map<std::string, std::string> attributes;

    std::string attribute(const std::string &key) const
    {
        const auto found = attributes.find(key);
        return found != attributes.end() ? found->second : std::string();
    }
};

// Called for what is found, in order. Any may be empty.
struct XmlEvents {
    std::function<void(const XmlElement &)> begin;
    std::function<void(const XmlElement &)> end;
    std::function<void(std::string_view)> text; // entities resolved
};

class XmlReader {
public:
    // Empty if the XML is well-formed, otherwise what is wrong and where.
    static std::string read(std::string_view xml, const XmlEvents &events)
    {
        XmlReader reader(xml, events);
        reader.read_document();
        return reader.fault_;
    }

private:
    XmlReader(std::string_view xml, const XmlEvents &events) : xml_(xml), events_(events) {}

    void fail(const std::string &what)
    {
        if (fault_.empty()) {
            fault_ = what + " at byte " + std::to_string(at_);
        }
    }
    bool take(std::string_view expected)
    {
        const bool is_there = xml_.substr(at_).starts_with(expected);
        at_ += is_there ? expected.size() : 0;
        return is_there;
    }
    void skip_space()
    {
        while (at_ < xml_.size() && std::string_view(" \n").find(xml_[at_]) != xml_.npos) {
            ++at_;
        }
    }

    void read_document()
    {
        if (!take("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n")) {
            fail("no declaration");
        }
        bool has_root = false;
        while (fault_.empty() && at_ < xml_.size()) {
            if (!open_.empty()) {
                read_content();
            } else if (!has_root && xml_[at_] == '<') {
                read_tag();
                has_root = true;
            } else if (take("\n")) {
                continue;
            } else {
                fail("something outside of the root");
            }
        }
        if (!open_.empty() || !has_root) {
            fail("the end is missing");
        }
    }
    void read_content()
    {
        if (xml_[at_] == '<') {
            read_tag();
        } else {
            const std::size_t end = std::min(xml_.find('<', at_), xml_.size());
            const std::string text = resolved(xml_.substr(at_, end - at_));
            at_ = end;
            if (events_.text) {
                events_.text(text);
            }
        }
    }
    void read_tag()
    {
        if (take("</")) {
            read_end_tag();
            return;
        }
        take("<");
        XmlElement element{read_name(), {}};
        skip_space();
        while (fault_.empty() && at_ < xml_.size() && xml_[at_] != '>' && xml_[at_] != '/') {
            read_attribute(element);
            skip_space();
        }
        open_.push_back(element);
        if (events_.begin) {
            events_.begin(element);
        }
        if (take("/>")) {
            close();
        } else if (!take(">")) {
            fail("a tag does not end");
        }
    }
    void read_end_tag()
    {
        if (read_name() != open_.back().name || !take(">")) {
            fail("an end tag of another element");
            return;
        }
        close();
    }
    void close()
    {
        if (events_.end) {
            events_.end(open_.back());
        }
        open_.pop_back();
    }
    std::string read_name()
    {
        const std::size_t begin = at_;
        while (at_ < xml_.size() &&
               (is_letter(xml_[at_]) || (at_ > begin && is_inner(xml_[at_])))) {
            ++at_;
        }
        if (at_ == begin) {
            fail("no name");
        }
        return std::string(xml_.substr(begin, at_ - begin));
    }
    void read_attribute(XmlElement &element)
    {
        const std::string name = read_name();
        if (!take("=\"")) {
            fail("an attribute without a value");
            return;
        }
        const std::size_t end = xml_.find('"', at_);
        if (end == xml_.npos) {
            fail("a value without an end");
            return;
        }
        const std::string_view value = xml_.substr(at_, end - at_);
        if (value.find('<') != value.npos) {
            fail("markup in a value");
        }
        if (!element.attributes.emplace(name, resolved(value)).second) {
            fail("an attribute twice");
        }
        at_ = end + 1;
    }

    static bool is_letter(char c)
    {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' || c == ':';
    }
    static bool is_inner(char c)
    {
        return (c >= '0' && c <= '9') || c == '-' || c == '.';
    }

    // Replaces entities by their characters. Checks all characters.
    std::string resolved(std::string_view text)
    {
        static const std::map<std::string_view, char> entities = {
            {"&amp;", '&'}, {"&lt;", '<'}, {"&gt;", '>'}, {"&quot;", '"'}};
        std::string plain;
        while (!text.empty()) {
            std::size_t length = character_length(text);
            if (text.front() != '&') {
                plain.append(text.substr(0, length));
            } else {
                length = text.find(';') + 1; // 0 without one
                const auto entity = entities.find(text.substr(0, length));
                if (entity == entities.end()) {
                    fail("an unknown entity");
                    return plain;
                }
                plain.push_back(entity->second);
            }
            if (length == 0) {
                fail("a character that XML does not allow");
                return plain;
            }
            text.remove_prefix(length);
        }
        return plain;
    }
    // 0 for a character that is not allowed, or not UTF-8.
    static std::size_t character_length(std::string_view text)
    {
        const auto byte = [text](std::size_t i) {
            return i < text.size() ? static_cast<uint8_t>(text[i]) : 0U;
        };
        const unsigned lead = byte(0);
        if (lead < 0x80) {
            return lead >= 0x20 || lead == '\n' || lead == '\t' ? 1 : 0;
        }
        const std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : lead >= 0xC2 ? 2 : 0;
        uint32_t character = length == 0 ? 0 : lead & (0x7FU >> length);
        for (std::size_t i = 1; i < length; ++i) {
            if ((byte(i) & 0xC0U) != 0x80U) {
                return 0;
            }
            character = character << 6U | (byte(i) & 0x3FU);
        }
        const bool is_surrogate = character >= 0xD800 && character <= 0xDFFF;
        const bool is_too_short =
            (length == 3 && character < 0x800) || (length == 4 && character < 0x10000);
        const bool is_beyond = character > 0x10FFFF;
        const bool is_no_character = character == 0xFFFE || character == 0xFFFF;
        return is_surrogate || is_too_short || is_beyond || is_no_character ? 0 : length;
    }

    std::string_view xml_;
    const XmlEvents &events_;
    std::size_t at_ = 0;
    std::vector<XmlElement> open_;
    std::string fault_;
};

} // namespace tests
