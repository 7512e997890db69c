#include "client/commandLine/secretFile.h"

#include <fstream>
#include <iostream>
#include <stdexcept>
#include <utility>

namespace client {

namespace {

std::istream& standardInput() {
    static bool isTaken = false;
    if (std::exchange(isTaken, true)) {
        throw std::invalid_argument("standard input can be read only once");
    }
    return std::cin;
}

}  // namespace

std::string readSecret(const std::string& path) {
    std::ifstream file;
    if (path != "-") {
        file.open(path);
    }
    std::istream& input = path == "-" ? standardInput() : file;
    std::string line;
    if (!std::getline(input, line)) {
        throw std::invalid_argument("no secret can be read from '" + path + "'");
    }
    if (line.ends_with('\r')) {
        line.pop_back();
    }
    return line;
}

}  // namespace client
