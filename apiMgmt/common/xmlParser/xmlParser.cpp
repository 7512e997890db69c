#include "apiMgmt/common/xmlParser/xmlParser.h"

#include <expat.h>
#include <pthread.h>
#include <sys/random.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <memory>
#include <new>
#include <utility>

#include "apiMgmt/common/xmlParser/plainReader.h"

namespace parser {

/// Turns the events of one run of Expat into elements. Its handlers allocate nothing, since
/// an exception could not pass through the C code that calls them: the text never gets longer
/// than the source, and the elements never outnumber its "<".
class DocumentBuilder {
public:
    DocumentBuilder(XML_Parser expat, std::string_view source, std::string& text,
                    std::vector<XMLElement>& elements)
        : m_expat(expat), m_source(source), m_text(text), m_elements(elements) {
        XML_SetUserData(expat, this);
        XML_SetElementHandler(expat, &onStart, &onEnd);
        XML_SetCharacterDataHandler(expat, &onText);
        XML_SetStartDoctypeDeclHandler(expat, &onDoctype);
    }

private:
    static DocumentBuilder& self(void* user) { return *static_cast<DocumentBuilder*>(user); }
    static void XMLCALL onStart(void* user, const XML_Char* name, const XML_Char**) {
        self(user).start(name);
    }
    static void XMLCALL onEnd(void* user, const XML_Char*) { self(user).end(); }
    static void XMLCALL onText(void* user, const XML_Char* text, int length) {
        self(user).text({text, static_cast<std::size_t>(length)});
    }
    static void XMLCALL onDoctype(void* user, const XML_Char*, const XML_Char*, const XML_Char*,
                                  int) {
        self(user).refuse();
    }

    void refuse() {
        m_refused = true;
        XML_StopParser(m_expat, XML_FALSE);
    }

    std::size_t position() const {
        return static_cast<std::size_t>(XML_GetCurrentByteIndex(m_expat));
    }

    /// The local part of `read`, the name in the start tag at `tag`. Taken from the source, so
    /// that it needs no memory of its own.
    std::string_view nameAt(std::size_t tag, std::string_view read) const {
        const std::string_view name = m_source.substr(tag + 1, read.size());
        return name.substr(name.rfind(':') + 1);
    }

    void start(std::string_view read) {
        if (m_refused) {
            return;  // Expat may report what stood in the same token
        }
        if (++m_depth > XMLParser::kMaxDepth || m_elements.size() == m_elements.capacity()) {
            refuse();
            return;
        }
        const std::size_t tag = position();
        const std::string_view name = nameAt(tag, read);
        if (name.empty()) {
            refuse();  // a prefix alone, as in "<p:>"
            return;
        }
        XMLElement& element = m_elements.emplace_back();
        element.m_name = name;
        element.m_parent = m_current;
        if (m_current != nullptr) {
            (m_current->m_lastChild != nullptr ? m_current->m_lastChild->m_nextSibling
                                               : m_current->m_firstChild) = &element;
            m_current->m_lastChild = &element;
        }
        // Both places where the content may begin; end() keeps the one that applies.
        const std::size_t tagSize = static_cast<std::size_t>(XML_GetCurrentByteCount(m_expat));
        element.m_content = m_source.substr(tag + tagSize, 0);
        m_current = &element;
        m_textBegin = m_text.size();
        m_run = {};
    }

    /// Most texts stand in the source as they are, in one run, and need no copy. Those with
    /// references or sections of character data are put together.
    void text(std::string_view piece) {
        const std::size_t at = position();
        const bool asItIs =
            static_cast<std::size_t>(XML_GetCurrentByteCount(m_expat)) == piece.size() &&
            m_source[at] == piece.front();
        const bool copying = m_text.size() != m_textBegin;
        if (asItIs && !copying && (m_run.empty() || m_run.end() == m_source.begin() + at)) {
            m_run = m_source.substr(at - m_run.size(), m_run.size() + piece.size());
            return;
        }
        if (!copying) {
            m_text.append(m_run);
        }
        m_text.append(piece);
    }

    void end() {
        if (m_refused) {
            return;
        }
        XMLElement& element = *m_current;
        if (element.m_firstChild == nullptr) {
            element.m_content =
                m_text.size() == m_textBegin ? m_run : std::string_view(m_text).substr(m_textBegin);
        } else {
            const auto begin = static_cast<std::size_t>(element.m_content.data() - m_source.data());
            element.m_content = m_source.substr(begin, position() - begin);
        }
        m_current = element.m_parent;
        --m_depth;
    }

    XML_Parser m_expat;
    std::string_view m_source;
    std::string& m_text;
    std::vector<XMLElement>& m_elements;
    XMLElement* m_current = nullptr;
    std::size_t m_textBegin = 0;  // of the element that started last
    std::string_view m_run;       // its text, as long as that stands in the source
    std::size_t m_depth = 0;
    bool m_refused = false;
};

namespace {

/// Keeps the hash tables of Expat from being flooded by chosen names. One per process, since
/// Expat would ask the system for a new one with every document; 0 leaves it to Expat.
unsigned long hashSalt() {
    static const unsigned long salt = [] {
        unsigned long random = 0;
        return ::getrandom(&random, sizeof(random), 0) == sizeof(random) ? random : 0;
    }();
    return salt;
}

/// The document without the usual declaration, which says what Expat is told anyway; reading it
/// is nearly a fifth of what a short reply takes. One that is followed by another instruction,
/// which may be a declaration out of place, is left for Expat to judge.
std::string_view withoutUsualDeclaration(std::string_view text) {
    constexpr std::string_view kUsualDeclaration = R"(<?xml version="1.0" encoding="UTF-8"?>)";
    if (!text.starts_with(kUsualDeclaration)) {
        return text;
    }
    const std::string_view rest = text.substr(
        std::min(text.size(), text.find_first_not_of(" \t\r\n", kUsualDeclaration.size())));
    return rest.starts_with('<') && !rest.starts_with("<?") ? rest : text;
}

/// How many "<" there are: as many elements as the text can hold. Eight bytes at a step, each with
/// a count of its own that is added up before it can overflow.
std::size_t countTags(std::string_view text) {
    constexpr std::uint64_t kOnes = 0x0101010101010101U;
    constexpr std::size_t kMaxSteps = 255;
    std::size_t count = 0;
    while (text.size() >= sizeof(kOnes)) {
        const std::size_t steps = std::min(text.size() / sizeof(kOnes), kMaxSteps);
        std::uint64_t counts = 0;
        for (std::size_t i = 0; i < steps; ++i) {
            std::uint64_t bytes = 0;
            std::memcpy(&bytes, text.data() + i * sizeof(bytes), sizeof(bytes));
            bytes ^= kOnes * '<';
            counts += (~((((bytes & kOnes * 0x7F) + kOnes * 0x7F) | bytes)) >> 7U) & kOnes;
        }
        for (; counts != 0; counts >>= 8U) {
            count += counts & 0xFFU;
        }
        text.remove_prefix(steps * sizeof(kOnes));
    }
    return count + static_cast<std::size_t>(std::count(text.begin(), text.end(), '<'));
}

using ExpatParser = std::unique_ptr<XML_ParserStruct, decltype(&XML_ParserFree)>;

/// The parser that a thread keeps for its next document. Freed by a key of the thread library and
/// not by a destructor of the thread's: registering one ends the process where memory has run out.
class KeptParser {
public:
    /// The parser is the caller's from here on; null when there is none.
    static ExpatParser take() {
        if (kept != nullptr) {
            (void)::pthread_setspecific(key().number, nullptr);
        }
        return {std::exchange(kept, nullptr), &XML_ParserFree};
    }

    /// Freed at once where the thread cannot keep it.
    static void put(ExpatParser parser) {
        if (key().made && ::pthread_setspecific(key().number, parser.get()) == 0) {
            kept = parser.release();
        }
    }

private:
    struct Key {
        pthread_key_t number{};
        bool made = ::pthread_key_create(&number, &freeParser) == 0;
    };

    static const Key& key() {
        static const Key only;
        return only;
    }

    static void freeParser(void* parser) { XML_ParserFree(static_cast<XML_Parser>(parser)); }

    static thread_local XML_Parser kept;
};

thread_local XML_Parser KeptParser::kept = nullptr;

// A parser never gives memory back. One that read a document longer than this is thrown away.
constexpr std::size_t kMaxKeptSize = std::size_t{64} * 1024;

/// The thread's own parser, ready for a document. Setting one up anew is a sixth of what a short
/// reply takes.
ExpatParser readyParser() {
    ExpatParser parser = KeptParser::take();
    if (!parser) {
        parser.reset(XML_ParserCreate("UTF-8"));
    } else if (XML_ParserReset(parser.get(), "UTF-8") != XML_TRUE) {
        parser.reset();
    }
    if (!parser) {
        throw std::bad_alloc();
    }
    XML_SetHashSalt(parser.get(), hashSalt());
    return parser;
}

/// Expat copies what it is given, so a large document goes to it in pieces. Where a token is longer
/// than a piece, which Expat then reads from its beginning each time, the pieces grow.
bool feed(XML_Parser expat, std::string_view text) {
    constexpr std::size_t kFirstPiece = std::size_t{256} * 1024;
    std::size_t given = 0;
    std::size_t piece = kFirstPiece;
    while (true) {
        const std::string_view next = text.substr(given, piece);
        const bool last = given + next.size() == text.size();
        if (XML_Parse(expat, next.data(), static_cast<int>(next.size()),
                      last ? XML_TRUE : XML_FALSE) != XML_STATUS_OK) {
            return false;
        }
        if (last) {
            return true;
        }
        const bool passed = static_cast<std::size_t>(XML_GetCurrentByteIndex(expat)) >= given;
        given += next.size();
        piece *= passed ? 1 : 2;
    }
}

}  // namespace

XMLParser::XMLParser(const char* name) : m_name(name != nullptr ? name : "") {}

bool XMLParser::ParseXMLString(std::string_view text) {
    m_elements.clear();
    m_source.assign(text.substr(0, kMaxSize + 1));
    return ParseInPlace(m_source);
}

bool XMLParser::ParseInPlace(std::string_view text) {
    m_elements.clear();
    m_text.clear();
    if (text.size() > kMaxSize) {
        return false;
    }
    text = withoutUsualDeclaration(text);
    m_text.reserve(text.size());
    m_elements.reserve(std::min(countTags(text), kMaxElements));
    if (PlainReader(text, m_text, m_elements, kMaxDepth).Read()) {
        return true;
    }
    m_elements.clear();
    m_text.clear();

    ExpatParser expat = readyParser();
    const DocumentBuilder builder(expat.get(), text, m_text, m_elements);
    const bool read = feed(expat.get(), text);
    if (text.size() <= kMaxKeptSize) {
        KeptParser::put(std::move(expat));
    }
    if (!read) {
        m_elements.clear();
    }
    return read;
}

const XMLElement* XMLParser::GetDocumentElement() const {
    return m_elements.empty() ? nullptr : m_elements.data();
}

}  // namespace parser
