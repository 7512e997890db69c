#include "apiMgmt/common/utils/stringUtil.h"

#include <arpa/inet.h>
#include <strings.h>

#include <algorithm>
#include <array>
#include <cassert>
#include <cctype>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <locale>
#include <sstream>
#include <string_view>

namespace {

constexpr std::size_t kFirstBufferSize = 100;  // holds nearly every log line and message
constexpr const char* kWhiteSpace = " \f\n\r\t\v";
constexpr const char* kSource = "apiMgmt/common/utils/stringUtil";
constexpr std::string_view kControlReference = "&#x0a;";
constexpr int kIpV6Bits = 128;

struct Reference {
    char character;
    bool markup;  // written also when only markup is escaped
    std::string_view text;
};

// clang-format off
constexpr Reference kReferences[] = {
    {'<',  true,  "&lt;"},
    {'>',  true,  "&gt;"},
    {'&',  false, "&amp;"},
    {'"',  false, "&quot;"},
    {'\'', false, "&apos;"},
};
// clang-format on

/// Which bytes may be written as a reference: nearly none, and every value of a request is
/// looked through.
constexpr auto kSpecial = [] {
    std::array<bool, 256> special{};
    for (std::size_t control = 0; control < 0x20; ++control) {
        special[control] = true;
    }
    for (const Reference& reference : kReferences) {
        special[static_cast<unsigned char>(reference.character)] = true;
    }
    return special;
}();

bool isSpecial(char character) {
    return kSpecial[static_cast<unsigned char>(character)];
}

/// What stands for a character in an escaped text; empty when it stands for itself.
std::string_view referenceOf(char character, bool markupOnly) {
    if (!kSpecial[static_cast<unsigned char>(character)]) {
        return {};
    }
    for (const Reference& reference : kReferences) {
        if (reference.character == character && (reference.markup || !markupOnly)) {
            return reference.text;
        }
    }
    const bool control = static_cast<unsigned char>(character) < 0x20;
    return control && !markupOnly ? kControlReference : std::string_view();
}

/// The reference that the text begins with, or null.
const Reference* findReference(std::string_view text, bool markupOnly) {
    for (const Reference& reference : kReferences) {
        if ((reference.markup || !markupOnly) && text.starts_with(reference.text)) {
            return &reference;
        }
    }
    return nullptr;
}

/// Written out, since assert() is gone from a release and the rule is not.
void requireArgument(const void* argument, const char* name, int line) {
    if (argument) {
        return;
    }
    std::fprintf(stderr, "%s:%d: Assertion `%s' failed.\n", kSource, line, name);
    std::abort();
}

template <int (*map)(int)>
std::string mapBytes(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char byte) { return static_cast<char>(map(byte)); });
    return text;
}

}  // namespace

std::string STRINGUtil::FormatStr(const char* format, ...) {
    va_list args;
    va_start(args, format);
    std::string text = FormatList(format, args);
    va_end(args);
    return text;
}

std::string STRINGUtil::FormatList(const char* format, va_list args) {
    std::array<char, kFirstBufferSize> buffer;
    va_list copy;
    va_copy(copy, args);
    const int length = std::vsnprintf(buffer.data(), buffer.size(), format, copy);
    va_end(copy);
    if (length < 0) {
        return std::string("Error in format string: \"") + format + "\"";
    }
    if (static_cast<std::size_t>(length) < buffer.size()) {
        return buffer.data();
    }

    std::string text(static_cast<std::size_t>(length), '\0');
    va_copy(copy, args);
    std::vsnprintf(text.data(), text.size() + 1, format, copy);
    va_end(copy);
    text.resize(std::strlen(text.c_str()));  // a "%c" of zero ends the text, as in the short form
    return text;
}

void STRINGUtil::SplitString(const std::string& text, const std::string& delimiter,
                             std::vector<std::string>& out, unsigned long maxParts) {
    assert(!delimiter.empty());
    out.clear();
    if (text.empty()) {
        return;
    }
    std::size_t position = 0;
    while (maxParts == 0 || out.size() + 1 < maxParts) {
        const std::size_t end = text.find(delimiter, position);
        if (end == std::string::npos) {
            break;
        }
        out.push_back(text.substr(position, end - position));
        position = end + delimiter.size();
    }
    out.push_back(text.substr(position));
}

void STRINGUtil::SplitString(const std::string& text, char delimiter,
                             std::vector<std::string>& out) {
    out.clear();
    for (std::size_t position = 0; position < text.size();) {
        const std::size_t end = std::min(text.find(delimiter, position), text.size());
        out.push_back(text.substr(position, end - position));
        position = end + 1;
    }
}

std::string STRINGUtil::AddToList(const std::string& list, const std::string& item) {
    return list.empty() ? item : list + ", " + item;
}

bool STRINGUtil::StartsWith(const std::string& text, const std::string& prefix) {
    return !prefix.empty() && text.starts_with(prefix);
}

bool STRINGUtil::ConvertStringToBool(const std::string& text) {
    return Comparecase(text, "true") == 0 || std::strtol(text.c_str(), nullptr, 10) == 1;
}

bool STRINGUtil::IsNumeric(const std::string& text) {
    std::istringstream stream(text);
    stream.imbue(std::locale::classic());
    double number = 0;
    stream >> number;
    return stream.eof() && !stream.fail();
}

int STRINGUtil::Comparecase(const std::string& a, const std::string& b) {
    return strcasecmp(a.c_str(), b.c_str());
}

void STRINGUtil::ReplaceAll(std::string& text, const std::string& from, const std::string& to) {
    assert(!from.empty());
    std::size_t found = text.find(from);
    if (found == std::string::npos) {
        return;
    }
    std::string replaced;  // in place, every hit would move the rest of the text
    std::size_t position = 0;
    for (; found != std::string::npos; found = text.find(from, position)) {
        replaced.append(text, position, found - position).append(to);
        position = found + from.size();
    }
    replaced.append(text, position);
    text = std::move(replaced);
}

void STRINGUtil::TrimLeft(std::string& text) {
    text.erase(0, text.find_first_not_of(kWhiteSpace));
}

void STRINGUtil::TrimRight(std::string& text) {
    text.erase(text.find_last_not_of(kWhiteSpace) + 1);
}

void STRINGUtil::Trim(std::string& text) {
    TrimLeft(text);
    TrimRight(text);
}

std::string STRINGUtil::ToUpperCase(const std::string& text) {
    return mapBytes<std::toupper>(text);
}

std::string STRINGUtil::ToLowerCase(const std::string& text) {
    return mapBytes<std::tolower>(text);
}

std::string STRINGUtil::EscapeString(const std::string& text, bool markupOnly) {
    if (std::none_of(text.begin(), text.end(), isSpecial)) {
        return text;
    }
    std::size_t size = 0;
    for (const char character : text) {
        size += std::max<std::size_t>(referenceOf(character, markupOnly).size(), 1);
    }
    std::string escaped;
    escaped.reserve(size);  // every value of a request comes by here: one allocation, never two
    for (const char character : text) {
        const std::string_view reference = referenceOf(character, markupOnly);
        if (reference.empty()) {
            escaped.push_back(character);
        } else {
            escaped.append(reference);
        }
    }
    return escaped;
}

std::string STRINGUtil::UnEscapeString(const std::string& text, bool markupOnly) {
    std::string plain;
    plain.reserve(text.size());
    std::string_view rest = text;
    while (!rest.empty()) {
        const std::size_t before = std::min(rest.find('&'), rest.size());
        plain.append(rest.substr(0, before));
        rest.remove_prefix(before);
        if (rest.empty()) {
            break;
        }
        const Reference* reference = findReference(rest, markupOnly);
        plain.push_back(reference ? reference->character : '&');
        rest.remove_prefix(reference ? reference->text.size() : 1);
    }
    return plain;
}

std::string STRINGUtil::ExtractFilenameFromPath(const std::string& path) {
    return path.substr(path.rfind('/') + 1);  // npos + 1 is 0
}

char* STRINGUtil::SafeStrncpy(char* destination, const char* source, unsigned long size) {
    static char empty[1] = "";
    requireArgument(destination, "ipDestination", __LINE__);
    if (size == 0) {
        return empty;
    }
    std::strncpy(destination, source ? source : "", source ? size : 1);
    destination[source ? size - 1 : 0] = '\0';
    return destination;
}

bool STRINGUtil::ParseIpV6Address(const std::string& text, std::string& address,
                                  int& prefixLength) {
    const std::size_t slash = text.find('/');
    int bits = kIpV6Bits;
    if (slash != std::string::npos) {
        const char* end = text.data() + text.size();
        const auto [stop, error] = std::from_chars(text.data() + slash + 1, end, bits);
        if (error != std::errc() || stop != end || bits < 0 || bits > kIpV6Bits) {
            return false;
        }
    }
    in6_addr binary;
    std::array<char, INET6_ADDRSTRLEN> spelling;
    const std::string spelled = text.substr(0, slash);
    if (spelled.find('\0') != std::string::npos ||
        inet_pton(AF_INET6, spelled.c_str(), &binary) != 1 ||
        !inet_ntop(AF_INET6, &binary, spelling.data(), spelling.size())) {
        return false;
    }
    address = spelling.data();
    prefixLength = bits;
    return true;
}

std::string STRINGUtil::FormatBase36String(const std::string& text, char fill, unsigned int width) {
    const auto isDigit = [](unsigned char byte) { return byte < 0x80 && std::isalnum(byte); };
    if (text.empty() || !std::all_of(text.begin(), text.end(), isDigit)) {
        return {};
    }
    const std::string padding(width > text.size() ? width - text.size() : 0, fill);
    return padding + ToUpperCase(text);
}
