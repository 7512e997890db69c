// Any text as a document: it is read or refused, and what was read can be walked.
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "apiMgmt/common/xmlParser/xmlParser.h"

namespace {

std::size_t walk(const parser::XMLElement& element) {
    std::size_t bytes = element.GetElementName().size() + element.GetElementContent().size();
    if (element.GetElementName().empty()) {
        std::abort();
    }
    for (const auto* child = element.GetFirstChild(); child != nullptr;
         child = child->GetNextSibling()) {
        bytes += walk(*child);
    }
    return bytes;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    parser::XMLParser reader(nullptr);
    const bool read = reader.ParseXMLString(text);
    if (read != (reader.GetDocumentElement() != nullptr)) {
        std::abort();
    }
    if (read) {
        walk(*reader.GetDocumentElement());
    }
    return 0;
}
