#pragma once

#include <atomic>
#include <cstddef>

/// A program that links sanTestServices sees this in place of the system's service
/// database: one entry "ostrel-apimgr" over "tcp", which the tests set.
namespace fakeServiceDatabase {

constexpr int kNoEntry = -1;
/// The port of the entry, in host byte order.
inline std::atomic<int> port = kNoEntry;
/// The bytes that the caller's buffer must have, as for an entry with many aliases.
inline std::atomic<std::size_t> neededBuffer = 1;
/// How often the database was asked.
inline std::atomic<int> lookUps = 0;

inline void setPort(int newPort) {
    port = newPort;
}

}  // namespace fakeServiceDatabase
