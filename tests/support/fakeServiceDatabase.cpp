#include "tests/support/fakeServiceDatabase.h"

#include <arpa/inet.h>
#include <netdb.h>

#include <atomic>
#include <cerrno>
#include <string_view>

namespace {

std::atomic<int> entryPort{fakeServiceDatabase::noEntry};
std::atomic<std::size_t> neededBuffer{1};
std::atomic<int> lookUpCount{0};

}  // namespace

namespace fakeServiceDatabase {

void setPort(int port) {
    entryPort = port;
}
void setNeededBuffer(std::size_t bytes) {
    neededBuffer = bytes;
}
int lookUps() {
    return lookUpCount;
}

}  // namespace fakeServiceDatabase

// Stands before the C library's own when the program is linked.
extern "C" __attribute__((visibility("default"))) int getservbyname_r(
    const char* name, const char* protocol, servent* entry, char*, size_t size, servent** result) {
    ++lookUpCount;
    *result = nullptr;
    if (size < neededBuffer) {
        return ERANGE;
    }
    if (entryPort == fakeServiceDatabase::noEntry || protocol == nullptr ||
        std::string_view(name) != "ostrel-apimgr" || std::string_view(protocol) != "tcp") {
        return 0;
    }
    entry->s_port = htons(static_cast<uint16_t>(entryPort.load()));
    *result = entry;
    return 0;
}
