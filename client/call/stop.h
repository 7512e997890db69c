#pragma once

#include <condition_variable>
#include <mutex>

namespace client {

/// Lets one thread ask others to end their work early.
class Stop {
public:
    void request();
    bool isRequested() const;

    /// Waits for that long and gives true; gives false as soon as the end is asked for.
    bool pause(double seconds) const;

private:
    mutable std::mutex m_mutex;
    mutable std::condition_variable m_wished;
    bool m_isRequested = false;
};

}  // namespace client
