#pragma once

#include <cstddef>

/// How often this thread has called operator new. Counted in every program that links
/// benchAllocations.
std::size_t allocationCount();
