#pragma once

#include <cstdint>

/// The bounds that an attribute row states. A negative number is no bound on its side.
namespace apiKind {

/// Bounds and forbidden characters: for STRING only.
struct TEXTBounds {
    std::int64_t minimum;
    std::int64_t maximum;
    const char* forbidden;
};

/// Bounds of a number, or of a text's length in bytes.
struct VALUEBounds {
    std::int64_t minimum;
    std::int64_t maximum;

    constexpr TEXTBounds Forbidding(const char* characters) const {
        return {minimum, maximum, characters};
    }
};

/// Both accept every value. They differ in the numbers that an attribute tells of itself.
inline constexpr VALUEBounds NoBounds{-2147483647, -1};
inline constexpr VALUEBounds Unbounded{-1, -1};

constexpr VALUEBounds AtLeast(std::int64_t minimum) {
    return {minimum, -1};
}

constexpr VALUEBounds Between(std::int64_t minimum, std::int64_t maximum) {
    return {minimum, maximum};
}

}  // namespace apiKind
