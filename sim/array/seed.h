#pragma once

#include <string>

#include "sim/text/jsonText.h"

namespace sim {

class ArrayState;

/// What an array holds when it starts.
struct Seed {
    static constexpr int kMaxVolumes = 100'000;

    /// Volumes to make besides those of the file, numbered from 1.
    int volumes = 8;
    /// The seed file's content (docs/simulator.md); null when there is none.
    Json content;
    /// What messages call the content, such as the file's name.
    std::string source = "the seed";
};

/// Puts the seed into an empty state. Throws std::runtime_error that names the place and the rule
/// that it breaks; the state is then to be thrown away.
void plant(const Seed& seed, ArrayState& state);

}  // namespace sim
