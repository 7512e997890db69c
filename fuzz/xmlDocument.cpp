// Any text as a document: it is read or refused, and what was read can be walked.
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

}  // namespace

void drive(std::string_view bytes) {
    parser::XMLParser reader(nullptr);
    const bool read = reader.ParseXMLString(bytes);
    require(read == (reader.GetDocumentElement() != nullptr));
    if (read) {
        walk(*reader.GetDocumentElement());
    }
}
