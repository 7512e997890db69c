#include "apiMgmt/common/ipc/apiMgrPort.h"

#include <arpa/inet.h>
#include <netdb.h>

#include <cerrno>
#include <cstdint>
#include <vector>

namespace {

constexpr const char* serviceName = "ostrel-apimgr";
constexpr const char* protocolName = "tcp";
constexpr int defaultPort = 35000;
// What the entry may need with all its aliases; a longer one counts as none.
constexpr std::size_t firstBufferSize = 1024;
constexpr std::size_t lastBufferSize = std::size_t{1024} * 1024;

int lookUpPort() {
    for (std::size_t size = firstBufferSize; size <= lastBufferSize; size *= 4) {
        std::vector<char> buffer(size);
        servent entry{};
        servent* found = nullptr;
        const int error = getservbyname_r(serviceName, protocolName, &entry, buffer.data(),
                                          buffer.size(), &found);
        if (error != ERANGE) {
            return found != nullptr ? ntohs(static_cast<std::uint16_t>(found->s_port))
                                    : defaultPort;
        }
    }
    return defaultPort;
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
