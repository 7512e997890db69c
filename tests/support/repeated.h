#pragma once

#include <string>

/// The piece so many times; "#" in it stands for the number of the repetition, from 0.
inline std::string repeated(const std::string& piece, std::size_t count) {
    const std::size_t mark = piece.find('#');
    std::string all;
    for (std::size_t i = 0; i < count; ++i) {
        all += mark == std::string::npos
                   ? piece
                   : piece.substr(0, mark) + std::to_string(i) + piece.substr(mark + 1);
    }
    return all;
}
