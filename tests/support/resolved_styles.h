// An XML stream of OpenDocument without the names of its paragraph styles, so that streams can
// be compared in which styles have other names or another order: the styles are taken out, and
// where a paragraph names one its definition stands instead. Nothing else is touched, and
// nothing is lenient: a name that is given twice, that is used and not given, or that is given
// and not used, is a fault.
#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <string_view>

namespace tests {

struct ResolvedStyles {
    std::string text;
    std::multiset<std::string> definitions; // without their names
    std::string fault;
};

class StyleResolver {
public:
    static ResolvedStyles resolved(std::string_view xml)
    {
        StyleResolver resolver;
        resolver.resolve_names(resolver.without_styles(xml));
        return resolver.result_;
    }

private:
    struct Style {
        std::string definition;
        bool is_used = false;
    };

    static bool is_body_name(std::string_view name)
    {
        return name.size() > 1 && name.front() == 'S' &&
               name.find_first_not_of("0123456789", 1) == std::string_view::npos;
    }
    // Up to the quote that ends an attribute's value.
    static std::string_view value_at(std::string_view xml, std::size_t begin)
    {
        return xml.substr(begin, xml.find('"', begin) - begin);
    }
    // Behind the element that begins here; one of this kind holds no other of its kind.
    static std::size_t end_of_style(std::string_view xml, std::size_t begin)
    {
        constexpr std::string_view end_tag = "</style:style>";
        const std::size_t tag_end = xml.find('>', begin) + 1;
        return xml[tag_end - 2] == '/' ? tag_end : xml.find(end_tag, begin) + end_tag.size();
    }

    std::string without_styles(std::string_view xml)
    {
        constexpr std::string_view style_tag = "<style:style ";
        std::string rest;
        std::size_t at = 0;
        for (std::size_t begin; (begin = xml.find(style_tag, at)) != std::string_view::npos;) {
            rest.append(xml.substr(at, begin - at));
            at = end_of_style(xml, begin);
            const std::string_view style = xml.substr(begin, at - begin);
            if (!take(style)) {
                rest.append(style);
            }
        }
        return rest.append(xml.substr(at));
    }

    // False for a style that is not of the body's paragraphs.
    bool take(std::string_view style)
    {
        constexpr std::string_view name_attribute = " style:name=\"";
        const std::size_t name_at = style.find(name_attribute) + name_attribute.size();
        const std::string_view name = value_at(style, name_at);
        if (!is_body_name(name)) {
            return false;
        }
        const std::string definition =
            std::string(style.substr(0, name_at)).append(style.substr(name_at + name.size()));
        result_.definitions.insert(definition);
        if (!styles_.emplace(name, Style{definition}).second) {
            result_.fault.append("twice: ").append(name).append("\n");
        }
        return true;
    }

    void resolve_names(std::string_view xml)
    {
        constexpr std::string_view name_attribute = " text:style-name=\"";
        std::size_t at = 0;
        for (std::size_t begin; (begin = xml.find(name_attribute, at)) != std::string_view::npos;) {
            begin += name_attribute.size();
            result_.text.append(xml.substr(at, begin - at));
            const std::string_view name = value_at(xml, begin);
            result_.text.append(is_body_name(name) ? definition_of(name) : name);
            at = begin + name.size();
        }
        result_.text.append(xml.substr(at));
        for (const auto &[name, style] : styles_) {
            result_.fault.append(style.is_used ? "" : "unused: " + name + "\n");
        }
    }
    std::string_view definition_of(std::string_view name)
    {
        const auto style = styles_.find(name);
        if (style == styles_.end()) {
            result_.fault.append("undefined: ").append(name).append("\n");
            return name;
        }
        style->second.is_used = true;
        return style->second.definition;
    }

    ResolvedStyles result_;
    std::map<std::string, Style, std::less<>> styles_;
};

inline ResolvedStyles resolved(std::string_view xml)
{
    return StyleResolver::resolved(xml);
}

} // namespace tests
