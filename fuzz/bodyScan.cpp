// Any bytes as a request body before the engine sees them: the scan's verdict is the same whatever
// pieces it comes in, and what it lets pass keeps the limits as another reader of XML counts.
#include "host/include/soapBodyScan.h"

#include <expat.h>

#include <algorithm>
#include <memory>
#include <set>
#include <string>

#include "fuzz/fuzzTarget.h"

namespace {

const char* scanned(std::string_view bytes, std::size_t piece) {
    soapBodyScan scan;
    soapStartScan(&scan, &kSoapModuleRules);
    const char* refusal = nullptr;
    for (std::size_t at = 0; at < bytes.size(); at += piece) {
        refusal = soapScan(&scan, bytes.data() + at, std::min(piece, bytes.size() - at));
    }
    return refusal;
}

struct Counts {
    int level = 0;
    std::set<std::string> names;
};

void XMLCALL begin(void* data, const XML_Char*, const XML_Char** attributes) {
    auto& counts = *static_cast<Counts*>(data);
    require(++counts.level <= kSoapMaxLevels);
    int ofTag = 0;
    for (; *attributes != nullptr; attributes += 2, ++ofTag) {
        const std::string_view name = *attributes;
        require(name.size() <= kSoapMaxAttributeNameBytes);
        if (name != "xmlns" && !name.starts_with("xmlns:")) {
            counts.names.emplace(name);
        }
    }
    require(ofTag <= kSoapMaxAttributesOfTag && counts.names.size() <= kSoapMaxAttributeNames);
}

void XMLCALL end(void* data, const XML_Char*) {
    --static_cast<Counts*>(data)->level;
}

}  // namespace

void drive(std::string_view bytes) {
    const char* refusal = scanned(bytes, std::max<std::size_t>(bytes.size(), 1));
    const std::size_t piece = bytes.empty() ? 1 : 1 + static_cast<unsigned char>(bytes[0]) % 7;
    require(scanned(bytes, 1) == refusal && scanned(bytes, piece) == refusal);
    if (refusal != nullptr) {
        return;
    }
    Counts counts;
    const std::unique_ptr<XML_ParserStruct, decltype(&XML_ParserFree)> parser(
        XML_ParserCreate("UTF-8"), XML_ParserFree);
    XML_SetUserData(parser.get(), &counts);
    XML_SetElementHandler(parser.get(), begin, end);
    (void)XML_Parse(parser.get(), bytes.data(), static_cast<int>(bytes.size()), 1);
}
