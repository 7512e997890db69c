// Any text as what an envelope's tag says: the reply's repeats a part of it, and is still one of
// SOAP whose every name belongs to a namespace.
#include <expat.h>

#include <memory>

#include "fuzz/serviceAnswer.h"

namespace {

void XMLCALL begin(void* first, const XML_Char* name, const XML_Char** /*attributes*/) {
    if (auto& text = *static_cast<std::string*>(first); text.empty()) {
        text = name;
    }
}

}  // namespace

void drive(std::string_view bytes) {
    const std::string reply =
        serviceAnswer("<e:Envelope " + std::string(bytes) +
                      "><e:Header><s:HccApiHeader><xsdVersion version=\"2.3\"/></s:HccApiHeader>"
                      "</e:Header><e:Body><s:Ping/></e:Body></e:Envelope>");
    if (reply.empty()) {
        return;
    }
    std::string first;
    const std::unique_ptr<XML_ParserStruct, decltype(&XML_ParserFree)> parser(
        XML_ParserCreateNS("UTF-8", '\1'), XML_ParserFree);
    XML_SetUserData(parser.get(), &first);
    XML_SetStartElementHandler(parser.get(), begin);
    const auto size = static_cast<int>(reply.size());
    requireOf(reply, XML_Parse(parser.get(), reply.data(), size, 1) == XML_STATUS_OK);
    requireOf(reply, first == "http://schemas.xmlsoap.org/soap/envelope/\1Envelope" ||
                         first == "http://www.w3.org/2003/05/soap-envelope\1Envelope");
}
