#include "apiMgmt/webservices/sanService/requestScan.h"

#include <algorithm>

#include "apiMgmt/common/text/codePoint.h"

namespace {

constexpr char kTooLong[] = "Request is longer than 131072 bytes";
constexpr char kCharacters[] = "Request contains characters that XML does not allow";
constexpr char kEntity[] = "Request refers to an entity that is not defined";
constexpr char kMarkup[] = "Request contains markup that is not XML";
constexpr char kDocumentType[] = "Request contains a document type declaration";
constexpr char kTooDeep[] = "Request nests elements more than 64 levels deep";
constexpr char kTooManyAttributes[] = "Request has too many attributes";
static_assert(RequestScan::kMaxBytes == 131072 && RequestScan::kMaxLevels == 64);

/// The bytes that mean something in some state; the others, most of a request, are passed over.
constexpr std::array<bool, 256> kTelling = [] {
    std::array<bool, 256> telling{};
    std::fill(telling.begin() + 0x80, telling.end(), true);
    for (const char byte : std::string_view("\0<&>\"'=", 7)) {
        telling[static_cast<unsigned char>(byte)] = true;
    }
    return telling;
}();

bool isBlank(unsigned char byte) {
    return byte == ' ' || byte == '\t' || byte == '\r' || byte == '\n';
}

bool isDefined(std::string_view entity) {
    return entity == "lt" || entity == "gt" || entity == "amp" || entity == "quot" ||
           entity == "apos";
}

}  // namespace

const char* RequestScan::add(std::string_view bytes) {
    m_size += bytes.size();
    require(m_size <= kMaxBytes, kTooLong);
    if (m_refusal == nullptr && !bytes.empty()) {
        look(bytes);
    }
    return m_refusal;
}

void RequestScan::look(std::string_view bytes) {
    // In these states only bytes that tell something matter.
    const auto passesOver = [this] {
        return m_bytesToCome == 0 &&
               (m_state == State::Text || m_state == State::StartTag || m_state == State::EndTag ||
                m_state == State::Value || m_state == State::Comment || m_state == State::Section ||
                m_state == State::Instruction);
    };
    for (std::size_t i = 0; i < bytes.size() && m_refusal == nullptr; ++i) {
        if (passesOver()) {
            const std::size_t from = i;
            while (i < bytes.size() && !kTelling[static_cast<unsigned char>(bytes[i])]) {
                ++i;
            }
            if (i - from >= 1) {
                m_before[1] =
                    i - from >= 2 ? static_cast<unsigned char>(bytes[i - 2]) : m_before[0];
                m_before[0] = static_cast<unsigned char>(bytes[i - 1]);
            }
            if (i == bytes.size()) {
                return;
            }
        }
        const auto byte = static_cast<unsigned char>(bytes[i]);
        step(byte);
        m_before = {byte, m_before[0]};
    }
}

void RequestScan::step(unsigned char byte) {
    if (m_state == State::Unread) {
        return;
    }
    if (m_state == State::Begin) {
        begin(byte);
    } else if (m_bytesToCome != 0) {
        continueMultibyte(byte);
    } else if (byte >= 0x80) {
        beginMultibyte(byte);
    } else if (byte == 0) {
        require(false, kCharacters);
    } else if (m_state >= State::Reference) {
        inReference(byte);
    } else {
        inMarkup(byte);
    }
}

/// Blanks and a byte order mark may stand before the document.
void RequestScan::begin(unsigned char byte) {
    if (byte == '<') {
        m_state = State::Less;
    } else if (!isBlank(byte) && byte != 0xEF && byte != 0xBB && byte != 0xBF) {
        m_state = State::Unread;
    }
}

void RequestScan::beginMultibyte(unsigned char byte) {
    const text::Lead lead = text::leadOf(byte);
    require(m_state < State::Reference, kEntity);
    require(lead.size != 0, kCharacters);
    if (m_state == State::Less) {
        inMarkup(byte);  // it begins a name
    }
    m_bytesToCome = lead.size - 1;
    m_codePoint = lead.bits;
    m_lowest = lead.lowest;
}

void RequestScan::continueMultibyte(unsigned char byte) {
    m_codePoint = m_codePoint << 6U | (byte & 0x3FU);
    require((byte & 0xC0U) == 0x80, kCharacters);
    if (--m_bytesToCome == 0) {
        require(m_codePoint >= m_lowest && text::isXmlCharacterOrControl(m_codePoint), kCharacters);
    }
}

void RequestScan::inMarkup(unsigned char byte) {
    const bool afterPair = m_before[0] == m_before[1];
    const unsigned char pairBeforeEnd = m_state == State::Comment ? '-' : ']';
    switch (m_state) {
        case State::Text:
            if (byte == '<') {
                m_state = State::Less;
            } else if (byte == '&') {
                beginReference();
            }
            break;
        case State::Less:
            if (byte == '/') {
                m_state = State::EndTag;
            } else if (byte == '!') {
                m_state = State::Bang;
            } else if (byte == '?') {
                m_state = State::Instruction;
            } else {
                m_state = State::StartTag;
                m_attributesOfElement = 0;
                require(++m_level <= kMaxLevels, kTooDeep);
                inStartTag(byte);
            }
            break;
        case State::Bang:
            require(byte == '-' || byte == '[', kDocumentType);
            m_state = byte == '-' ? State::BangDash : State::Section;
            break;
        case State::BangDash:
            require(byte == '-', kMarkup);
            m_state = State::Comment;
            break;
        case State::Comment:
        case State::Section:
            if (byte == '>' && afterPair && m_before[0] == pairBeforeEnd) {
                m_state = State::Text;
            }
            break;
        case State::Instruction:
            require(byte != '&', kMarkup);  // nobody needs it here, and readers differ in its end
            if (byte == '>' && m_before[0] == '?') {
                m_state = State::Text;
            }
            break;
        case State::EndTag:
            require(byte != '<', kMarkup);
            if (byte == '>') {
                m_level -= m_level > 0 ? 1 : 0;
                m_state = State::Text;
            }
            break;
        case State::Value:
            require(byte != '<', kMarkup);
            if (byte == m_quote) {
                m_state = State::StartTag;
            } else if (byte == '&') {
                beginReference();
            }
            break;
        default:
            inStartTag(byte);
    }
}

void RequestScan::inStartTag(unsigned char byte) {
    switch (byte) {
        case '"':
        case '\'':
            m_quote = byte;
            m_state = State::Value;
            break;
        case '=':
            require(++m_attributesOfElement <= kMaxAttributesOfElement &&
                        ++m_attributes <= kMaxAttributes,
                    kTooManyAttributes);
            break;
        case '>':
            m_level -= m_before[0] == '/' ? 1 : 0;
            m_state = State::Text;
            break;
        case '<':
        case '&':
            require(false, kMarkup);
            break;
        default:
            break;
    }
}

void RequestScan::inReference(unsigned char byte) {
    switch (m_state) {
        case State::Reference:
            m_entitySize = 0;
            m_codePoint = 0;
            m_state = byte == '#' ? State::Number : State::EntityName;
            if (m_state == State::EntityName) {
                inReference(byte);
            }
            break;
        case State::EntityName:
            if (byte == ';') {
                require(isDefined({m_entity.data(), m_entitySize}), kEntity);
                m_state = m_outside;
            } else {
                require(m_entitySize < m_entity.size(), kEntity);
                m_entity[std::min(m_entitySize++, m_entity.size() - 1)] = static_cast<char>(byte);
            }
            break;
        case State::Number:
            m_state = byte == 'x' ? State::HexDigits : State::DecimalDigits;
            if (m_state == State::DecimalDigits) {
                inReference(byte);
            }
            break;
        default:
            if (byte == ';') {
                require(text::isXmlCharacterOrControl(m_codePoint), kCharacters);
                m_state = m_outside;
            } else {
                digit(byte, m_state == State::HexDigits ? 16 : 10);
            }
    }
}

void RequestScan::digit(unsigned char byte, unsigned base) {
    constexpr std::uint32_t kBeyondUnicode = 0x110000;
    unsigned value = base;
    if (byte >= '0' && byte <= '9') {
        value = byte - '0';
    } else if ((byte | 0x20U) >= 'a' && (byte | 0x20U) <= 'f') {
        value = (byte | 0x20U) - 'a' + 10;
    }
    require(value < base, kEntity);
    m_codePoint = std::min(m_codePoint * base + value, kBeyondUnicode);
}
