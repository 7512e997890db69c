#pragma once

namespace sim {

/// What the array knows.
class ArrayState {};

}  // namespace sim
