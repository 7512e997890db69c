#include "client/call/messageText.h"

#include <algorithm>
#include <array>
#include <cctype>

namespace client {

namespace {

// How to add one: the local name of the element.
constexpr std::array<std::string_view, 4> secretElements = {"userPass", "authToken", "hccKey",
                                                            "userToken"};
constexpr std::string_view mask = "***";
constexpr std::size_t npos = std::string_view::npos;

// The name of the tag that begins at `open`, with its prefix.
std::string_view tagName(std::string_view message, std::size_t open) {
    const std::size_t begin = open + 1;
    const std::size_t end = message.find_first_of("/> \t\r\n", begin);
    return message.substr(begin, end == npos ? npos : end - begin);
}

bool isSecret(std::string_view name) {
    const std::string_view local = name.substr(name.find(':') + 1);
    return std::find(secretElements.begin(), secretElements.end(), local) != secretElements.end();
}

// Where the content of a secret element ends: at its end tag, or at the end of the text.
std::size_t endOfContent(std::string_view message, std::size_t from, std::string_view name) {
    const std::size_t end = message.find("</" + std::string(name), from);
    return std::min(end, message.size());
}

// U+0080 to U+009F in UTF-8, which terminals obey as they do the first 32.
bool isC1Control(std::string_view text) {
    return text.size() > 1 && text[0] == '\xC2' && static_cast<unsigned char>(text[1]) < 0xA0;
}

void appendEscape(std::string& text, unsigned char octet) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    text.append("\\x").append({digits[octet >> 4U], digits[octet & 0xFU]});
}

}  // namespace

std::string maskSecrets(std::string_view message) {
    std::string result;
    std::size_t copied = 0;
    for (std::size_t open = message.find('<'); open != npos; open = message.find('<', open + 1)) {
        const std::string_view name = tagName(message, open);
        const std::size_t close = message.find('>', open);
        if (!isSecret(name) || close == npos || message[close - 1] == '/') {
            continue;
        }
        const std::size_t end = endOfContent(message, close + 1, name);
        result.append(message.substr(copied, close + 1 - copied)).append(mask);
        copied = end;
        open = end - 1;
    }
    return result.append(message.substr(copied));
}

std::string indentXml(std::string_view message) {
    std::string result;
    std::size_t depth = 0;
    bool afterEnd = true;
    while (!message.empty()) {
        const std::size_t close = message.front() == '<' ? message.find('>') : npos;
        if (close == npos) {
            const std::size_t next = message.find('<', 1);
            result.append(message.substr(0, next));
            message.remove_prefix(std::min(next, message.size()));
            continue;
        }
        const std::string_view tag = message.substr(0, close + 1);
        const bool isEnd = tag.starts_with("</");
        const bool isWhole = tag.ends_with("/>") || tag.starts_with("<?");
        depth -= isEnd && depth > 0 ? 1 : 0;
        if (!result.empty() && (!isEnd || afterEnd)) {
            result.append("\n").append(depth * 2, ' ');
        }
        result.append(tag);
        depth += isEnd || isWhole ? 0 : 1;
        afterEnd = isEnd || isWhole;
        message.remove_prefix(tag.size());
    }
    return result;
}

std::string printable(std::string_view text) {
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto octet = static_cast<unsigned char>(text[i]);
        if (isC1Control(text.substr(i))) {
            appendEscape(result, octet);
            appendEscape(result, static_cast<unsigned char>(text[++i]));
        } else if (std::iscntrl(octet) == 0 || octet == '\n' || octet == '\t') {
            result += text[i];
        } else {
            appendEscape(result, octet);
        }
    }
    return result;
}

}  // namespace client
