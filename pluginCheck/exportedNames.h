#pragma once

#include <string>
#include <vector>

/// The names that a shared object of this machine's kind exports. Empty when the file is none.
std::vector<std::string> exportedNames(const std::string& path);
