#include "apiMgmt/webservices/sanService/requestScan.h"

#include <algorithm>
#include <cstring>

#include "apiMgmt/common/text/codePoint.h"

namespace {

constexpr char kTooLong[] = "Request is longer than 131072 bytes";
constexpr char kCharacters[] = "Request contains characters that XML does not allow";
constexpr char kTooManyAttributes[] = "Request has too many attributes";
static_assert(RequestScan::kMaxBytes == 131072 && kSoapMaxLevels == 64);

constexpr soapScanRules kRules = {
    .markup = "Request contains markup that is not XML",
    .documentType = "Request contains a document type declaration",
    .levels = "Request nests elements more than 64 levels deep",
    .attributesOfTag = kTooManyAttributes,
    .attributeNames = "Request has too many different attributes",
    .attributeName = "Request has an attribute with too long a name",
    .namespaces = "Request declares too many namespaces",
    .attributes = kTooManyAttributes,
    .allowsCharacter =
        [](std::uint32_t point) { return text::isXmlCharacterOrControl(point) ? 1 : 0; },
    .character = kCharacters,
    .entity = "Request refers to an entity that is not defined",
};

/// Where the first byte is that is zero or no ASCII.
std::size_t plainSize(std::string_view bytes) {
    constexpr std::uint64_t kOnes = 0x0101010101010101;
    constexpr std::uint64_t kHighBits = 0x8080808080808080;
    std::uint64_t word = 0;
    std::size_t at = 0;
    for (; at + sizeof(word) <= bytes.size(); at += sizeof(word)) {
        std::memcpy(&word, bytes.data() + at, sizeof(word));
        if (((word | (word - kOnes)) & kHighBits) != 0) {
            break;
        }
    }
    while (at < bytes.size() && bytes[at] > 0) {
        ++at;
    }
    return at;
}

bool isBlank(char byte) {
    return byte == ' ' || byte == '\t' || byte == '\r' || byte == '\n';
}

bool isNoAscii(char byte) {
    return static_cast<unsigned char>(byte) >= 0x80;
}

}  // namespace

// NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init): the scan's room for names is not cleared
RequestScan::RequestScan() {
    soapStartScan(&m_shape, &kRules);
}

const char* RequestScan::add(std::string_view bytes) {
    m_size += bytes.size();
    if (m_refusal == nullptr && m_size > kMaxBytes) {
        m_refusal = kTooLong;
    }
    const std::string_view document = withoutBegin(bytes);
    if (m_refusal != nullptr || document.empty()) {
        return m_refusal;
    }
    // What comes first is what is said. A byte that belongs to no character is still looked at, for
    // the sake of a reference that it breaks.
    const std::size_t legal = legalSize(document);
    const bool isLegal = legal == document.size();
    m_refusal = soapScan(&m_shape, document.data(),
                         legal + (!isLegal && isNoAscii(document[legal]) ? 1 : 0));
    if (m_refusal == nullptr && !isLegal) {
        m_refusal = kCharacters;
    }
    return m_refusal;
}

/// What of these bytes is a document. Blanks and a byte order mark may stand before it.
std::string_view RequestScan::withoutBegin(std::string_view bytes) {
    if (m_form == Form::Unknown) {
        const auto* const begin = std::find_if_not(bytes.begin(), bytes.end(), [](char byte) {
            return isBlank(byte) || byte == '\xEF' || byte == '\xBB' || byte == '\xBF';
        });
        bytes.remove_prefix(static_cast<std::size_t>(begin - bytes.begin()));
        if (!bytes.empty()) {
            m_form = bytes.front() == '<' ? Form::Document : Form::Other;
        }
    }
    return m_form == Form::Document ? bytes : std::string_view();
}

/// How many of the bytes are before the first that no document may hold.
std::size_t RequestScan::legalSize(std::string_view bytes) {
    std::size_t at = 0;
    while (at < bytes.size()) {
        at += m_bytesToCome == 0 ? plainSize(bytes.substr(at)) : 0;
        if (at == bytes.size() || !takeMultibyte(static_cast<unsigned char>(bytes[at]))) {
            break;
        }
        ++at;
    }
    return at;
}

bool RequestScan::takeMultibyte(unsigned char byte) {
    if (m_bytesToCome == 0) {
        const text::Lead lead = text::leadOf(byte);
        m_bytesToCome = lead.size - 1;
        m_codePoint = lead.bits;
        m_lowest = lead.lowest;
        return lead.size > 1;  // a zero is no more a character than what leads nothing
    }
    m_codePoint = m_codePoint << 6U | (byte & 0x3FU);
    --m_bytesToCome;
    return (byte & 0xC0U) == 0x80 &&
           (m_bytesToCome != 0 ||
            (m_codePoint >= m_lowest && text::isXmlCharacterOrControl(m_codePoint)));
}
