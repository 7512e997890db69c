#include "apiMgmt/common/text/documentText.h"

#include <algorithm>
#include <optional>
#include <vector>

#include "apiMgmt/common/text/markupPiece.h"

namespace text {

namespace {

using Kind = MarkupPiece::Kind;
using Names = std::span<const std::string_view>;

constexpr std::string_view kMask = "***";
constexpr std::size_t npos = std::string_view::npos;

bool holds(Names names, std::string_view name) {
    const std::string_view local = name.substr(name.find(':') + 1);  // npos + 1 is 0
    return std::find(names.begin(), names.end(), local) != names.end();
}

/// The size of an element's content, which `rest` begins with: up to its end tag, which is not
/// that of an element of the same name within it. All of `rest` when there is none.
std::size_t contentSize(std::string_view rest, std::string_view name) {
    std::size_t size = 0;
    for (std::size_t open = 1; size < rest.size();) {
        const MarkupPiece piece = firstPiece(rest.substr(size));
        if (piece.name == name) {
            open += piece.kind == Kind::Start ? 1 : 0;
            open -= piece.kind == Kind::End ? 1 : 0;
        }
        if (open == 0) {
            break;
        }
        size += piece.text.size();
    }
    return size;
}

bool isBlank(std::string_view text) {
    return text.find_first_not_of(" \t\r\n") == npos;
}

/// Lays pieces out in lines. `Add` is false for an end tag that ends nothing; `beforeEnd` says
/// that an end tag follows the piece.
class Indenter {
public:
    bool Add(const MarkupPiece& piece, bool beforeEnd) {
        switch (piece.kind) {
            case Kind::Text:
            case Kind::Cdata:
                AddText(piece, beforeEnd);
                return true;
            case Kind::Start:
                BeginLine();
                m_open.push_back(piece.name);
                break;
            case Kind::Empty:
            case Kind::Other:
                BeginLine();
                break;
            case Kind::End:
                if (m_open.empty() || m_open.back() != piece.name) {
                    return false;
                }
                m_open.pop_back();
                if (m_last != Kind::Start) {
                    BeginLine();
                }
                break;
            case Kind::Broken:
                return false;
        }
        m_text.append(piece.text);
        m_last = piece.kind;
        return true;
    }

    /// The text when every element has ended.
    std::optional<std::string> Finish() {
        return m_open.empty() ? std::optional(std::move(m_text)) : std::nullopt;
    }

private:
    /// White space stays where it is all that an element holds.
    void AddText(const MarkupPiece& piece, bool beforeEnd) {
        const bool isContent = m_last == Kind::Start && beforeEnd;
        if (isContent || piece.kind == Kind::Cdata || !isBlank(piece.text)) {
            m_text.append(piece.text);
        }
    }

    void BeginLine() {
        if (!m_text.empty()) {
            m_text.append("\n").append(m_open.size() * 2, ' ');
        }
    }

    std::string m_text;
    std::vector<std::string_view> m_open;
    Kind m_last = Kind::Other;
};

}  // namespace

std::string maskSecrets(std::string_view document, Names secretNames) {
    // Each "<" is looked at, also one within a comment: whatever looks like a secret is masked.
    std::string masked;
    std::size_t copied = 0;
    for (std::size_t at = document.find('<'); at != npos; at = document.find('<', at + 1)) {
        const std::string_view name = tagName(document.substr(at));
        if (!holds(secretNames, name)) {
            continue;
        }
        const MarkupPiece tag = firstPiece(document.substr(at));
        const bool isBroken = tag.kind == Kind::Broken;  // then all behind its name is a secret
        const std::size_t begin = at + (isBroken ? 1 + name.size() : tag.text.size());
        if (tag.kind == Kind::Empty || (isBroken && begin == document.size())) {
            continue;
        }
        const std::size_t size =
            isBroken ? document.size() - begin : contentSize(document.substr(begin), name);
        masked.append(document.substr(copied, begin - copied)).append(kMask);
        copied = begin + size;
        at = copied - 1;
    }
    return masked.append(document.substr(copied));
}

std::string indentXml(std::string_view document) {
    Indenter indenter;
    for (std::string_view rest = document; !rest.empty();) {
        const MarkupPiece piece = firstPiece(rest);
        rest.remove_prefix(piece.text.size());
        const bool beforeEnd = rest.starts_with("</");
        if (!indenter.Add(piece, beforeEnd)) {
            return std::string(document);
        }
    }
    return indenter.Finish().value_or(std::string(document));
}

}  // namespace text
