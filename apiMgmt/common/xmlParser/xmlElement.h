#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace parser {

/// One element of a document that an XMLParser has read. It belongs to its parser, and
/// everything reached from it lives until the parser is destroyed or reads another text.
///
/// Names are local names: a prefix is dropped when a document is read. Attributes are not kept.
class XMLElement {
public:
    using TagVal = std::pair<std::string_view, std::string_view>;

    std::string_view GetElementName() const { return m_name; }

    /// Without child elements: the text, with references resolved. With child elements: all
    /// that stands between the element's tags, as it was written, so that it can be stored as
    /// a value and be parsed again.
    std::string GetElementContent() const { return std::string(m_content); }
    /// The same without a copy; lives as long as the element.
    std::string_view GetContentView() const { return m_content; }

    /// The content of the first child element of that name; empty when there is none.
    std::string GetChildElemContentByTag(std::string_view tag) const;
    /// The first child element of that name, or null.
    const XMLElement* GetChildElemByTag(std::string_view tag) const;
    /// All child elements of that name, in document order.
    std::vector<const XMLElement*> GetChildElemsByTagName(std::string_view tag) const;
    /// Name and content of every child element, in document order; they live as long as the
    /// element.
    std::vector<TagVal> GetChildTagVals() const;

    /// For walking over all child elements: the first, then each one's next; null at the end.
    const XMLElement* GetFirstChild() const { return m_firstChild; }
    const XMLElement* GetNextSibling() const { return m_nextSibling; }

private:
    friend class DocumentBuilder;
    friend class PlainReader;

    std::string_view m_name;
    std::string_view m_content;
    XMLElement* m_firstChild = nullptr;
    XMLElement* m_lastChild = nullptr;
    XMLElement* m_nextSibling = nullptr;
    XMLElement* m_parent = nullptr;
};

}  // namespace parser
