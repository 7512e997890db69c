#pragma once
// What every target has: it drives its subject with the bytes, and aborts where something does not
// hold. `#include` this in the target's only file.
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

void drive(std::string_view bytes);

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    drive({reinterpret_cast<const char*>(data), size});
    return 0;
}

inline void require(bool holds) {
    if (!holds) {
        std::abort();
    }
}
