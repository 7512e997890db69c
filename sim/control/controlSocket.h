#pragma once

#include <string>

namespace sim {

/// Where the simulator on this port is controlled: a socket file below $XDG_RUNTIME_DIR or,
/// without it, in a folder of the user's own below /tmp.
std::string defaultControlPath(int port);

/// Makes the folder of the socket for the user alone, and takes away the socket that a dead
/// simulator left. Throws std::runtime_error when somebody else owns the folder, when a live
/// simulator answers there, when another kind of file is there, or when the path is too long for a
/// socket.
void prepareControlPath(const std::string& path);

}  // namespace sim
