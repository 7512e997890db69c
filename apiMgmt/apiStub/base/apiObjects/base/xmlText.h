#pragma once

#include <string>
#include <string_view>

/// Writes the elements of request and reply documents, without blanks or line breaks. Values
/// are written as given; who has to escape them did so.
class XMLText {
public:
    static void AppendStartTag(std::string& xml, std::string_view name);
    static void AppendEndTag(std::string& xml, std::string_view name);
    /// Start tag, value, end tag.
    static void AppendElement(std::string& xml, std::string_view name, std::string_view value);
    /// How many bytes AppendElement adds.
    static constexpr std::size_t ElementSize(std::string_view name, std::string_view value) {
        return 2 * name.size() + value.size() + 5;
    }
};
