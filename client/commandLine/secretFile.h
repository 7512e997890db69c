#pragma once

#include <string>

namespace client {

/// The first line of the file, without its end; "-" reads the standard input. This is how
/// secrets arrive without standing on a command line, where every user of the machine could
/// read them. Raises std::invalid_argument when there is no such line, and when the standard input
/// was read before.
std::string readSecret(const std::string& path);

}  // namespace client
