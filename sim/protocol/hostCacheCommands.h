#pragma once

#include <span>

#include "sim/protocol/command.h"

namespace sim {

/// The commands of a host-cache cluster, which live as long as the process.
std::span<const Command> hostCacheCommands();

}  // namespace sim
