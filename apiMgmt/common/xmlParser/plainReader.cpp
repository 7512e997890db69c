#include "apiMgmt/common/xmlParser/plainReader.h"

#include <array>
#include <cstdint>
#include <cstring>

namespace parser {

namespace {

constexpr std::uint8_t kNameStart = 1;
constexpr std::uint8_t kName = 2;
constexpr std::uint8_t kText = 4;
constexpr std::uint8_t kSpace = 8;

/// What a byte may be part of; nothing for those that are left to Expat.
constexpr std::array<std::uint8_t, 256> makeClasses() {
    std::array<std::uint8_t, 256> classes{};
    for (unsigned byte = 0x20; byte < 0x7F; ++byte) {
        classes[byte] = kText;
    }
    for (const char markup : {'<', '&', ']'}) {
        classes[static_cast<unsigned char>(markup)] = 0;
    }
    for (unsigned letter = 'a'; letter <= 'z'; ++letter) {
        classes[letter] |= kNameStart | kName;
        classes[letter - 'a' + 'A'] |= kNameStart | kName;
    }
    classes['_'] |= kNameStart | kName;
    for (unsigned digit = '0'; digit <= '9'; ++digit) {
        classes[digit] |= kName;
    }
    classes['-'] |= kName;
    classes['.'] |= kName;
    for (const char blank : {' ', '\t', '\n'}) {
        classes[static_cast<unsigned char>(blank)] = kText | kSpace;
    }
    return classes;
}

constexpr std::array<std::uint8_t, 256> kClasses = makeClasses();

bool is(char byte, std::uint8_t kind) {
    return (kClasses[static_cast<unsigned char>(byte)] & kind) != 0;
}

const char* skip(const char* next, const char* end, std::uint8_t kind) {
    while (next != end && is(*next, kind)) {
        ++next;
    }
    return next;
}

struct Reference {
    std::string_view name;
    char meaning;
};

constexpr Reference kReferences[] = {
    {"&amp;", '&'}, {"&lt;", '<'}, {"&gt;", '>'}, {"&quot;", '"'}, {"&apos;", '\''}};

}  // namespace

PlainReader::PlainReader(std::string_view source, std::string& text,
                         std::vector<XMLElement>& elements, std::size_t maxDepth)
    : m_next(source.data()),
      m_end(m_next + source.size()),
      m_text(text),
      m_elements(elements),
      m_maxDepth(maxDepth) {}

bool PlainReader::Read() {
    m_next = skip(m_next, m_end, kSpace);
    do {
        if (Ahead() == '<' ? !(Ahead(1) == '/' ? ReadEndTag() : ReadStartTag())
                           : m_depth == 0 || !ReadText()) {
            return false;
        }
    } while (m_depth > 0);
    return skip(m_next, m_end, kSpace) == m_end;
}

bool PlainReader::ReadStartTag() {
    const char* const name = m_next + 1;
    const bool isNamed = is(Ahead(1), kNameStart);
    m_next = skip(name, m_end, kName);
    const char* const nameEnd = m_next;
    const bool isEmpty = Ahead() == '/' && Ahead(1) == '>';
    if (!isNamed || (Ahead() != '>' && !isEmpty) || m_depth == m_maxDepth ||
        m_elements.size() == m_elements.capacity()) {
        return false;
    }
    XMLElement& element = m_elements.emplace_back();
    element.m_name = {name, static_cast<std::size_t>(nameEnd - name)};
    element.m_parent = m_current;
    if (m_current != nullptr) {
        (m_current->m_lastChild != nullptr ? m_current->m_lastChild->m_nextSibling
                                           : m_current->m_firstChild) = &element;
        m_current->m_lastChild = &element;
    }
    m_next = nameEnd + (isEmpty ? 2 : 1);
    // Where it begins; EndElement knows where it ends.
    element.m_content = {m_next, 0};  // NOLINT(bugprone-string-constructor)
    m_contentBegin = m_next;
    m_textBegin = m_text.size();
    m_isDecoded = false;
    m_current = &element;
    ++m_depth;
    if (isEmpty) {
        EndElement(m_next);
    }
    return true;
}

bool PlainReader::ReadEndTag() {
    if (m_current == nullptr) {
        return false;
    }
    const std::string_view name = m_current->m_name;
    const char* const written = m_next + 2;
    if (static_cast<std::size_t>(m_end - written) <= name.size() ||
        std::memcmp(written, name.data(), name.size()) != 0 || written[name.size()] != '>') {
        return false;
    }
    EndElement(m_next);
    m_next = written + name.size() + 1;
    return true;
}

/// Keeps what applies: the text, or with child elements all that is written between the tags.
void PlainReader::EndElement(const char* markupEnd) {
    XMLElement& element = *m_current;
    if (element.m_firstChild == nullptr && m_isDecoded) {
        m_text.append(m_contentBegin, markupEnd);
        element.m_content = std::string_view(m_text).substr(m_textBegin);
    } else {
        const char* const begin = element.m_content.data();
        element.m_content = {begin, static_cast<std::size_t>(markupEnd - begin)};
    }
    m_isDecoded = false;
    m_current = element.m_parent;
    --m_depth;
}

bool PlainReader::ReadText() {
    for (;;) {
        m_next = skip(m_next, m_end, kText);
        if (Ahead() == '<') {
            return true;
        }
        if (Ahead() == '&') {
            if (!ReadReference()) {
                return false;
            }
        } else if (Ahead() == ']' && !(Ahead(1) == ']' && Ahead(2) == '>')) {
            ++m_next;
        } else {
            return false;
        }
    }
}

/// The texts around references are gathered in `text`; m_contentBegin is where the next begins.
bool PlainReader::ReadReference() {
    const std::string_view rest(m_next, static_cast<std::size_t>(m_end - m_next));
    for (const auto& [name, meaning] : kReferences) {
        if (rest.starts_with(name)) {
            m_text.append(m_contentBegin, m_next);
            m_text.push_back(meaning);
            m_next += name.size();
            m_contentBegin = m_next;
            m_isDecoded = true;
            return true;
        }
    }
    return false;
}

}  // namespace parser
