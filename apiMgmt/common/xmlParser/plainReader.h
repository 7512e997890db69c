#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "apiMgmt/common/xmlParser/xmlElement.h"

namespace parser {

/// Reads the plainest of documents, which is what an array's replies are: elements of plain names
/// without attributes, ASCII text, the five predefined references. Whatever else a document holds,
/// and whatever may be wrong with it, is none of its business: it then reads nothing and leaves the
/// document to Expat. What it reads, Expat reads alike, at ten times the cost.
class PlainReader {
public:
    /// `text` and `elements` are empty and have room for all that `source` can hold: its size,
    /// and an element for each of its "<". The elements point into `source` and into `text`.
    PlainReader(std::string_view source, std::string& text, std::vector<XMLElement>& elements,
                std::size_t maxDepth);

    /// Whether the document was read. If not, texts and elements are not to be used.
    bool Read();

private:
    /// The byte so far ahead; zero, which is part of nothing, behind the end.
    char Ahead(std::size_t offset = 0) const {
        return offset < static_cast<std::size_t>(m_end - m_next) ? m_next[offset] : '\0';
    }
    bool ReadStartTag();
    bool ReadEndTag();
    bool ReadText();
    bool ReadReference();
    void EndElement(const char* markupEnd);

    const char* m_next;
    const char* const m_end;
    std::string& m_text;
    std::vector<XMLElement>& m_elements;
    const std::size_t m_maxDepth;
    std::size_t m_depth = 0;
    XMLElement* m_current = nullptr;
    const char* m_contentBegin = nullptr;  // of the element that started last
    std::size_t m_textBegin = 0;           // of its decoded text, when it needs decoding
    bool m_isDecoded = false;
};

}  // namespace parser
