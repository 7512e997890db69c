#pragma once

#include <chrono>

namespace client {

/// Seconds of a clock that nobody sets, for the time between two moments.
inline double now() {
    const auto time = std::chrono::steady_clock::now().time_since_epoch();
    return std::chrono::duration<double>(time).count();
}

}  // namespace client
