#include "apiMgmt/common/text/markupPiece.h"

#include <algorithm>

namespace text {

namespace {

using Kind = MarkupPiece::Kind;

constexpr std::size_t npos = std::string_view::npos;

/// What is neither a tag nor text, by what it begins and ends with; the longer beginning first.
/// A document type may hold markup of its own and is then taken for broken or for several pieces.
constexpr struct {
    std::string_view begin, end;
    Kind kind;
} kOthers[] = {
    {"<!--", "-->", Kind::Other},
    {"<![CDATA[", "]]>", Kind::Cdata},
    {"<!", ">", Kind::Other},
    {"<?", "?>", Kind::Other},
};

MarkupPiece whole(Kind kind, std::string_view rest, std::size_t size, std::string_view name) {
    return size == npos ? MarkupPiece{Kind::Broken, rest, name}
                        : MarkupPiece{kind, rest.substr(0, size), name};
}

/// The size of the tag that `rest` begins with. A ">" in the value of an attribute ends no tag.
std::size_t tagSize(std::string_view rest) {
    std::size_t at = rest.find_first_of(">'\"");
    while (at != npos && rest[at] != '>') {
        const std::size_t closing = rest.find(rest[at], at + 1);
        at = closing == npos ? npos : rest.find_first_of(">'\"", closing + 1);
    }
    return at == npos ? npos : at + 1;
}

MarkupPiece firstTag(std::string_view rest) {
    const bool isEnd = rest.starts_with("</");
    const std::string_view name = tagName(rest.substr(isEnd ? 1 : 0));
    const std::size_t size = tagSize(rest);
    if (isEnd) {
        return whole(Kind::End, rest, size, name);
    }
    const bool isEmpty = size != npos && rest[size - 2] == '/';
    return whole(isEmpty ? Kind::Empty : Kind::Start, rest, size, name);
}

}  // namespace

std::string_view tagName(std::string_view rest) {
    return rest.substr(1, rest.find_first_of("/<> \t\r\n", 1) - 1);
}

MarkupPiece firstPiece(std::string_view rest) {
    if (rest.front() != '<') {
        return {Kind::Text, rest.substr(0, rest.find('<')), {}};
    }
    for (const auto& other : kOthers) {
        if (rest.starts_with(other.begin)) {
            const std::size_t end = rest.find(other.end, other.begin.size());
            return whole(other.kind, rest, end == npos ? npos : end + other.end.size(), {});
        }
    }
    return firstTag(rest);
}

}  // namespace text
