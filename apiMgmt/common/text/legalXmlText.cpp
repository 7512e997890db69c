#include "apiMgmt/common/text/legalXmlText.h"

#include <cstdint>

namespace text {

namespace {

/// The bytes and the lowest code point of the sequence that a lead byte announces; no bytes for
/// one that leads nothing.
struct Lead {
    std::size_t size;
    std::uint32_t bits;
    std::uint32_t lowest;
};

Lead leadOf(unsigned char byte) {
    if (byte < 0x80) {
        return {1, byte, 0};
    }
    if ((byte & 0xE0U) == 0xC0) {
        return {2, byte & 0x1FU, 0x80};
    }
    if ((byte & 0xF0U) == 0xE0) {
        return {3, byte & 0x0FU, 0x800};
    }
    if ((byte & 0xF8U) == 0xF0) {
        return {4, byte & 0x07U, 0x10000};
    }
    return {0, 0, 0};
}

bool isLegal(std::uint32_t codePoint) {
    if (codePoint < 0x20) {
        return codePoint == '\t' || codePoint == '\n' || codePoint == '\r';
    }
    const bool surrogate = codePoint >= 0xD800 && codePoint <= 0xDFFF;
    return !surrogate && codePoint != 0xFFFE && codePoint != 0xFFFF && codePoint <= 0x10FFFF;
}

/// The size of the legal character that `text` begins with; 0 when it begins with none.
std::size_t legalSize(std::string_view text) {
    const Lead lead = leadOf(static_cast<unsigned char>(text.front()));
    if (lead.size == 0 || lead.size > text.size()) {
        return 0;
    }
    std::uint32_t codePoint = lead.bits;
    for (const char next : text.substr(1, lead.size - 1)) {
        const auto byte = static_cast<unsigned char>(next);
        if ((byte & 0xC0U) != 0x80) {
            return 0;
        }
        codePoint = codePoint << 6U | (byte & 0x3FU);
    }
    return codePoint >= lead.lowest && isLegal(codePoint) ? lead.size : 0;
}

}  // namespace

std::string legalXmlText(std::string_view text) {
    std::string legal;
    legal.reserve(text.size());
    while (!text.empty()) {
        const std::size_t size = legalSize(text);
        legal.append(text.substr(0, size));
        text.remove_prefix(size == 0 ? 1 : size);
    }
    return legal;
}

}  // namespace text
