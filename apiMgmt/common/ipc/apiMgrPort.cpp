#include "apiMgmt/common/ipc/apiMgrPort.h"

#include <arpa/inet.h>
#include <netdb.h>

#include <cerrno>
#include <cstdint>
#include <vector>

namespace {

constexpr const char* kServiceName = "ostrel-apimgr";
constexpr const char* kProtocolName = "tcp";
constexpr int kDefaultPort = 35000;
// What the entry may need with all its aliases; a longer one counts as none.
constexpr std::size_t kFirstBufferSize = 1024;
constexpr std::size_t kLastBufferSize = std::size_t{1024} * 1024;

int lookUpPort() {
    for (std::size_t size = kFirstBufferSize; size <= kLastBufferSize; size *= 4) {
        std::vector<char> buffer(size);
        servent entry{};
        servent* found = nullptr;
        const int error = getservbyname_r(kServiceName, kProtocolName, &entry, buffer.data(),
                                          buffer.size(), &found);
        if (error != ERANGE) {
            return found != nullptr ? ntohs(static_cast<std::uint16_t>(found->s_port))
                                    : kDefaultPort;
        }
    }
    return kDefaultPort;
}

std::atomic<int> cachedPort{0};
static_assert(sizeof(cachedPort) == sizeof(int) && std::atomic<int>::is_always_lock_free);

}  // namespace

int getApiMgrPort(std::atomic<int>& cache) {
    int port = cache.load(std::memory_order_relaxed);
    if (port == 0) {
        port = lookUpPort();
        cache.store(port, std::memory_order_relaxed);
    }
    return port;
}

int getApiMgrPort() {
    return getApiMgrPort(cachedPort);
}

void renewApiMgrPort() {
    cachedPort.store(lookUpPort(), std::memory_order_relaxed);
}
