#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "apiMgmt/common/xmlParser/xmlElement.h"

namespace parser {

/// Reads one XML document into elements.
///
///     parser::XMLParser reader(nullptr);
///     if (reader.ParseXMLString(text))
///         use(reader.GetDocumentElement()->GetChildElemContentByTag("Error"));
///
/// Documents come from outside, so it refuses what a plain document has no use for: a document
/// type declaration (and with it every entity of one's own), nesting beyond kMaxDepth, more than
/// kMaxElements elements, more than kMaxSize bytes. The text is UTF-8, whatever its declaration
/// says.
class XMLParser {
public:
    static constexpr std::size_t kMaxSize = std::size_t{64} * 1024 * 1024;
    static constexpr std::size_t kMaxElements = 1'000'000;
    static constexpr std::size_t kMaxDepth = 128;

    /// `name` is what the parser calls itself to a debugger; it may be null.
    explicit XMLParser(const char* name);
    XMLParser(const XMLParser&) = delete;
    XMLParser& operator=(const XMLParser&) = delete;

    /// True when `text` is one well-formed document within the limits. Replaces what was read
    /// before. Raises nothing but std::bad_alloc.
    bool ParseXMLString(std::string_view text);

    /// The same without a copy of `text`, which has to live as long as the elements are used.
    bool ParseInPlace(std::string_view text);

    /// The document's outermost element; null unless the last text was read in full. It
    /// belongs to the parser.
    const XMLElement* GetDocumentElement() const;

    const std::string& GetName() const { return m_name; }

private:
    std::string m_name;
    std::string m_source;                // the copy of the text, when there is one
    std::string m_text;                  // the texts that do not stand in the source as they are
    std::vector<XMLElement> m_elements;  // in document order; never grows beyond its reservation
};

}  // namespace parser
