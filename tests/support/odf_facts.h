// The content of an XML stream of OpenDocument: its paragraphs as a reader understands them, and
// its styles. Faults: not well-formed; a style defined twice, used but not defined, or defined but
// not used.
#pragma once

#include "tests/support/xml_elements.h"

#include <cstdlib>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace tests {

class OdfFacts {
public:
    struct Paragraph {
        std::string style;
        std::string text; // spaces as readers join and count them, tabs as tabs
    };

    explicit OdfFacts(std::string_view xml)
    {
        const std::string fault =
            XmlReader::read(xml, {.begin = [this](const XmlElement &element) { begin(element); },
                                  .end = [this](const XmlElement &element) { end(element); },
                                  .text = [this](std::string_view text) { add_text(text); }});
        fault_ = fault.empty() ? style_fault() : fault;
    }

    const std::string &fault() const
    {
        return fault_;
    }
    const std::vector<Paragraph> &body() const
    {
        return body_;
    }
    // Automatic ones, by family and name: "paragraph Left-page".
    const std::set<std::string> &styles() const
    {
        return styles_;
    }
    // The texts of the body, a line each.
    std::string text() const
    {
        std::string all;
        for (const Paragraph &paragraph : body_) {
            all.append(paragraph.text).append("\n");
        }
        return all;
    }

private:
    void begin(const XmlElement &element)
    {
        const std::string &name = element.name;
        if (name == "office:automatic-styles") {
            in_automatic_styles_ = true;
        } else if (name == "office:text") {
            in_body_ = true;
        } else if (name == "style:style") {
            define(element);
        } else if (name == "text:p") {
            paragraph_ = {element.attribute("text:style-name"), ""};
            in_paragraph_ = true;
            used_.insert("paragraph " + paragraph_.style);
        } else if (name == "text:span") {
            used_.insert("text " + element.attribute("text:style-name"));
        } else if (name == "text:tab") {
            paragraph_.text.push_back('\t');
        } else if (name == "text:s") {
            const std::string count = element.attribute("text:c");
            paragraph_.text.append(count.empty() ? 1 : std::strtoul(count.c_str(), nullptr, 10),
                                   counted_space);
        }
    }
    void end(const XmlElement &element)
    {
        if (element.name == "office:automatic-styles") {
            in_automatic_styles_ = false;
        } else if (element.name == "text:p") {
            in_paragraph_ = false;
            paragraph_.text = as_understood(paragraph_.text);
            if (in_body_) {
                body_.push_back(paragraph_);
            }
        }
    }
    void add_text(std::string_view text)
    {
        if (in_paragraph_) {
            paragraph_.text.append(text);
        }
    }
    void define(const XmlElement &element)
    {
        const std::string name =
            element.attribute("style:family") + " " + element.attribute("style:name");
        if (!(in_automatic_styles_ ? styles_ : common_styles_).insert(name).second) {
            given_twice_.insert(name);
        }
    }

    // Spaces that are text are joined, and dropped at either end.
    static std::string as_understood(std::string_view text)
    {
        std::string understood;
        for (std::size_t i = 0; i < text.size(); ++i) {
            const bool is_dropped =
                text[i] == ' ' && (i == 0 || i + 1 == text.size() || text[i - 1] == ' ');
            if (!is_dropped) {
                understood.push_back(text[i] == counted_space ? ' ' : text[i]);
            }
        }
        return understood;
    }

    // A package has its common styles in another stream.
    std::string style_fault() const
    {
        if (!given_twice_.empty()) {
            return *given_twice_.begin() + " is given twice";
        }
        for (const std::string &name : used_) {
            const bool is_common = name == "paragraph Standard" || common_styles_.contains(name);
            if (!styles_.contains(name) && !is_common) {
                return name + " is used and not given";
            }
        }
        for (const std::string &name : styles_) {
            if (!used_.contains(name)) {
                return name + " is given and not used";
            }
        }
        return {};
    }

    static constexpr char counted_space = '\x01'; // no XML holds it

    bool in_automatic_styles_ = false;
    bool in_body_ = false;
    bool in_paragraph_ = false;
    Paragraph paragraph_;
    std::vector<Paragraph> body_;
    std::set<std::string> styles_;
    std::set<std::string> common_styles_;
    std::set<std::string> given_twice_;
    std::set<std::string> used_;
    std::string fault_;
};

} // namespace tests
