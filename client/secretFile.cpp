#include "client/secretFile.h"

#include <fstream>
#include <iostream>
#include <stdexcept>

namespace client {

std::string readSecret(const std::string& path) {
    std::ifstream file;
    if (path != "-") {
        file.open(path);
    }
    std::istream& input = path == "-" ? std::cin : file;
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
