#include "apiMgmt/common/text/legalXmlText.h"

#include <cstdint>

#include "apiMgmt/common/text/codePoint.h"

namespace text {

namespace {

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
    return codePoint >= lead.lowest && isXmlCharacter(codePoint) ? lead.size : 0;
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
