#pragma once

#include "sim/text/jsonText.h"

namespace sim {

class ArrayState;

/// What an array holds when it starts.
struct Seed {
    /// Volumes to make besides those of the file, numbered from 1.
    int volumes = 8;
    /// The seed file's content (docs/simulator.md); null when there is none.
    Json content;
};

/// Puts the seed into an empty state. Throws std::runtime_error that says which part of the
/// content is wrong; the state is then to be thrown away.
void plant(const Seed& seed, ArrayState& state);

}  // namespace sim
