#include "tests/apiMgmt/webservices/sanService/contract/wire.h"

#include <algorithm>
#include <fstream>

namespace wire {

std::string sample(const std::string& name) {
    std::ifstream file(std::string(GOLDEN_DIR) + "/" + name + ".xml");
    std::string bytes;
    for (std::string line; std::getline(file, line);) {
        const std::size_t start = std::min(line.find_first_not_of(' '), line.size());
        // Inside a tag, an attribute to a line, a blank stands for the break.
        bytes += start > 0 && line[start] != '<' ? " " + line.substr(start) : line.substr(start);
    }
    return bytes;
}

std::string joined(const std::string& text) {
    std::string bytes = text;
    std::erase_if(bytes, [](char each) { return each == '\n' || each == '\r'; });
    return bytes;
}

}  // namespace wire
