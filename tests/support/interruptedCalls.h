#pragma once

#include <atomic>

/// Stands in for connect, poll, send and recv of the program that links it: while `each` is set,
/// every such call is interrupted once before it does its work, a connect after it has begun, and
/// what is sent or received goes byte by byte. Off at first.
namespace interruptedCalls {
inline std::atomic<bool> each{false};
inline std::atomic<int> count{0};  // how many were interrupted
}  // namespace interruptedCalls
