#pragma once

#include <condition_variable>
#include <mutex>

namespace client {

/// The wish that work ends early, from one thread to others.
class Stop {
public:
    void request();
    bool isRequested() const;

    /// Waits so long, or until the end is wished for; then it gives false.
    bool pause(double seconds) const;

private:
    mutable std::mutex m_mutex;
    mutable std::condition_variable m_wished;
    bool m_isRequested = false;
};

}  // namespace client
