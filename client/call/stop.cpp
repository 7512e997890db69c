#include "client/call/stop.h"

#include <chrono>

namespace client {

void Stop::request() {
    const std::lock_guard lock(m_mutex);
    m_isRequested = true;
    m_wished.notify_all();
}

bool Stop::isRequested() const {
    const std::lock_guard lock(m_mutex);
    return m_isRequested;
}

bool Stop::pause(double seconds) const {
    std::unique_lock lock(m_mutex);
    return !m_wished.wait_for(lock, std::chrono::duration<double>(seconds),
                              [this] { return m_isRequested; });
}

}  // namespace client
