#pragma once

#include <cstddef>

/// A program that links sanTestServices sees this in place of the system's service
/// database: one entry "ostrel-apimgr" over "tcp", which the tests set.
namespace fakeServiceDatabase {

constexpr int noEntry = -1;

/// The port of the entry, in host byte order. Starts as noEntry.
void setPort(int port);
/// The bytes that the caller's buffer must have, as for an entry with many aliases.
void setNeededBuffer(std::size_t bytes);
/// How often the database was asked.
int lookUps();

}  // namespace fakeServiceDatabase
