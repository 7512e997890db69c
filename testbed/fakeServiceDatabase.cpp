#include "testbed/fakeServiceDatabase.h"

#include <arpa/inet.h>
#include <netdb.h>

#include <cerrno>
#include <string_view>

using namespace fakeServiceDatabase;

// Stands before the C library's own when the program is linked.
extern "C" __attribute__((visibility("default"))) int getservbyname_r(
    const char* name, const char* protocol, servent* entry, char*, size_t size, servent** result) {
    ++lookUps;
    *result = nullptr;
    if (size < neededBuffer) {
        return ERANGE;
    }
    if (port == kNoEntry || protocol == nullptr || std::string_view(name) != "ostrel-apimgr" ||
        std::string_view(protocol) != "tcp") {
        return 0;
    }
    entry->s_port = htons(static_cast<uint16_t>(port.load()));
    *result = entry;
    return 0;
}
