#include "apiMgmt/common/text/safeText.h"

namespace text {

namespace {

/// How many bytes the control character takes that `rest` begins with; 0 when it begins with
/// something else. U+0080 to U+009F take two, the first of them always 0xC2.
std::size_t controlLength(std::string_view rest) {
    const auto byte = [rest](std::size_t i) { return static_cast<unsigned char>(rest[i]); };
    if (byte(0) < 0x20 || byte(0) == 0x7F) {
        return 1;
    }
    const bool high = byte(0) == 0xC2 && rest.size() > 1 && byte(1) >= 0x80 && byte(1) <= 0x9F;
    return high ? 2 : 0;
}

void appendEscapes(std::string& out, std::string_view bytes) {
    constexpr std::string_view kHex = "0123456789abcdef";
    for (const char byte : bytes) {
        const auto value = static_cast<unsigned char>(byte);
        out.append("\\x").append({kHex[value >> 4U], kHex[value & 0xFU]});
    }
}

/// `kept` are control characters that stay.
std::string escapeControls(std::string_view rest, std::string_view kept) {
    std::string out;
    out.reserve(rest.size());
    while (!rest.empty()) {
        const std::size_t length = controlLength(rest);
        if (length == 0 || kept.find(rest.front()) != std::string_view::npos) {
            out.push_back(rest.front());
            rest.remove_prefix(1);
        } else {
            appendEscapes(out, rest.substr(0, length));
            rest.remove_prefix(length);
        }
    }
    return out;
}

}  // namespace

bool isOneLine(std::string_view text) {
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (controlLength(text.substr(i)) != 0) {
            return false;
        }
    }
    return true;
}

std::string oneLine(std::string_view text) {
    return escapeControls(text, "");
}

std::string printable(std::string_view text) {
    return escapeControls(text, "\n\t");
}

std::string shortened(std::string_view text) {
    constexpr std::size_t kMaxCharacters = 256;
    std::size_t characters = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool begins = (static_cast<unsigned char>(text[i]) & 0xC0U) != 0x80;
        if (begins && ++characters > kMaxCharacters) {
            return std::string(text.substr(0, i)) + "...[cut]";
        }
    }
    return std::string(text);
}

}  // namespace text
