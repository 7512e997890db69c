#include "sim/text/xmlText.h"

#include "apiMgmt/common/text/legalXmlText.h"

namespace sim {

std::string escapeXml(std::string_view text) {
    std::string out;
    out.reserve(text.size());
    for (const char c : text::legalXmlText(text)) {
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
                out += c;
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

}  // namespace sim
