#include "sim/text/xmlText.h"

#include <array>

#include "apiMgmt/common/xmlParser/xmlParser.h"

namespace sim {

namespace {

constexpr std::string_view mask = "***";

/// Elements whose content is a secret. To add one, append its name.
constexpr std::array<std::string_view, 2> secretElements = {"HccKey", "sessionkey"};

bool isForbidden(char c) {
    return static_cast<unsigned char>(c) < 0x20 && c != '\t' && c != '\n' && c != '\r';
}

void indentElement(const parser::XMLElement& element, std::size_t depth, std::string& out) {
    const std::string name(element.GetElementName());
    out.append(2 * depth, ' ').append("<").append(name).append(">");
    if (element.GetFirstChild() == nullptr) {
        out.append(escapeXml(element.GetContentView()));
    } else {
        out.append("\n");
        for (const auto* child = element.GetFirstChild(); child != nullptr;
             child = child->GetNextSibling()) {
            indentElement(*child, depth + 1, out);
        }
        out.append(2 * depth, ' ');
    }
    out.append("</").append(name).append(">\n");
}

/// Where `name` next stands right behind one of two characters; npos when nowhere.
std::size_t findTag(std::string_view text, std::string_view name, std::size_t from,
                    std::string_view before) {
    for (std::size_t at = text.find(name, from); at != std::string_view::npos;
         at = text.find(name, at + 1)) {
        if (at > 0 && before.find(text[at - 1]) != std::string_view::npos) {
            return at;
        }
    }
    return std::string_view::npos;
}

void maskElement(std::string& text, std::string_view name) {
    // A prefix before the name changes nothing for a reader, so it is no way around the mask.
    std::size_t at = 0;
    while ((at = findTag(text, name, at, "<:")) != std::string::npos) {
        const std::size_t start = text.find('>', at);
        if (start == std::string::npos) {
            return;
        }
        const std::size_t closing = findTag(text, name, start, "/:");
        const std::size_t end =
            closing == std::string::npos ? text.size() : text.rfind('<', closing);
        text.replace(start + 1, end - start - 1, mask);
        at = closing == std::string::npos ? text.size() : text.find('>', start + 1 + mask.size());
    }
}

}  // namespace

std::string escapeXml(std::string_view text) {
    std::string out;
    out.reserve(text.size());
    for (const char c : text) {
        switch (c) {
            case '<':
                out += "&lt;";
                break;
            case '>':
                out += "&gt;";
                break;
            case '&':
                out += "&amp;";
                break;
            case '\r':
                out += "&#13;";
                break;
            default:
                if (!isForbidden(c)) {
                    out += c;
                }
        }
    }
    return out;
}

std::string xmlElement(std::string_view name, std::string_view text) {
    return xmlWrap(name, escapeXml(text));
}

std::string xmlWrap(std::string_view name, std::string_view markup) {
    std::string out;
    out.reserve(2 * name.size() + markup.size() + 5);
    out.append("<").append(name).append(">").append(markup).append("</").append(name).append(">");
    return out;
}

std::string indentXml(std::string_view document) {
    parser::XMLParser reader(nullptr);
    if (!reader.ParseXMLString(document)) {
        return std::string(document);
    }
    std::string out;
    indentElement(*reader.GetDocumentElement(), 0, out);
    out.pop_back();
    return out;
}

std::string maskSecrets(std::string_view document) {
    std::string out(document);
    for (const std::string_view name : secretElements) {
        maskElement(out, name);
    }
    return out;
}

}  // namespace sim
