#include "pluginCheck/servicePort.h"

#include <arpa/inet.h>
#include <dlfcn.h>
#include <netdb.h>

#include <string_view>

namespace {

int offeredPort = 0;

}  // namespace

void offerServicePort(int port) {
    offeredPort = port;
}

// Stands before the C library's own, which answers for all other services.
extern "C" __attribute__((visibility("default"))) int getservbyname_r(const char* name,
                                                                      const char* protocol,
                                                                      servent* entry, char* room,
                                                                      size_t size,
                                                                      servent** result) {
    if (std::string_view(name) != "ostrel-apimgr") {
        static const auto inLibrary =
            reinterpret_cast<decltype(&getservbyname_r)>(dlsym(RTLD_NEXT, "getservbyname_r"));
        return inLibrary(name, protocol, entry, room, size, result);
    }
    static char ownName[] = "ostrel-apimgr";
    static char ownProtocol[] = "tcp";
    static char* noAliases[] = {nullptr};
    *entry = {.s_name = ownName,
              .s_aliases = noAliases,
              .s_port = htons(static_cast<uint16_t>(offeredPort)),
              .s_proto = ownProtocol};
    *result = entry;
    return 0;
}
