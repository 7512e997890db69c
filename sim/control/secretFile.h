#pragma once

#include <string>

namespace sim {

/// The first line of a file that holds a secret. Throws std::runtime_error when it cannot be read,
/// is empty, or is readable by others than its owner.
std::string readSecretFile(const std::string& file);

/// A token that nobody can guess.
std::string makeToken();

}  // namespace sim
