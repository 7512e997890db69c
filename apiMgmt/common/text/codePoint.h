#pragma once

#include <cstddef>
#include <cstdint>

/// What UTF-8 and XML 1.0 say about single characters.
namespace text {

/// The bytes and the lowest code point of the sequence that a lead byte announces; no bytes for
/// one that leads nothing.
struct Lead {
    std::size_t size;
    std::uint32_t bits;
    std::uint32_t lowest;
};

constexpr Lead leadOf(unsigned char byte) {
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

/// False for what no document can hold in any spelling, control characters apart.
constexpr bool isXmlCharacterOrControl(std::uint32_t codePoint) {
    const bool surrogate = codePoint >= 0xD800 && codePoint <= 0xDFFF;
    return codePoint != 0 && !surrogate && codePoint != 0xFFFE && codePoint != 0xFFFF &&
           codePoint <= 0x10FFFF;
}

constexpr bool isXmlCharacter(std::uint32_t codePoint) {
    return isXmlCharacterOrControl(codePoint) &&
           (codePoint >= 0x20 || codePoint == '\t' || codePoint == '\n' || codePoint == '\r');
}

}  // namespace text
