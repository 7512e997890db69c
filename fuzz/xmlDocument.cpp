// Any text as a document: it is read or refused, what was read can be walked, and a comment behind
// it, which brings every document before Expat, changes nothing.
#include <string>

#include "apiMgmt/common/xmlParser/xmlParser.h"
#include "fuzz/fuzzTarget.h"

namespace {

std::size_t walk(const parser::XMLElement& element) {
    require(!element.GetElementName().empty());
    std::size_t bytes = element.GetElementName().size() + element.GetElementContent().size();
    for (const auto* child = element.GetFirstChild(); child != nullptr;
         child = child->GetNextSibling()) {
        bytes += walk(*child);
    }
    return bytes;
}

void requireSame(const parser::XMLElement* left, const parser::XMLElement* right) {
    for (; left != nullptr && right != nullptr;
         left = left->GetNextSibling(), right = right->GetNextSibling()) {
        require(left->GetElementName() == right->GetElementName());
        require(left->GetContentView() == right->GetContentView());
        requireSame(left->GetFirstChild(), right->GetFirstChild());
    }
    require(left == right);
}

}  // namespace

void drive(std::string_view bytes) {
    parser::XMLParser reader(nullptr);
    const bool read = reader.ParseXMLString(bytes);
    require(read == (reader.GetDocumentElement() != nullptr));
    if (read) {
        walk(*reader.GetDocumentElement());
        parser::XMLParser expat(nullptr);
        require(expat.ParseXMLString(std::string(bytes) + "<!---->"));
        requireSame(reader.GetDocumentElement(), expat.GetDocumentElement());
    }
}
