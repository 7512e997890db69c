#include "sim/jsonText.h"

#include <algorithm>
#include <fstream>
#include <stdexcept>

namespace sim {

std::string jsonText(const Json& value, int indent) {
    return value.dump(indent, ' ', false, Json::error_handler_t::replace);
}

Json readJsonFile(const std::string& file) {
    std::ifstream in(file);
    if (!in) {
        throw std::runtime_error("cannot read " + file);
    }
    try {
        return Json::parse(in);
    } catch (const Json::exception& problem) {
        throw std::runtime_error(file + ": " + problem.what());
    }
}

void onlyMembers(const Json& value, const std::string& what,
                 std::initializer_list<std::string_view> names) {
    if (!value.is_object()) {
        throw std::runtime_error(what + " has to be an object");
    }
    for (const auto& [name, member] : value.items()) {
        if (std::find(names.begin(), names.end(), name) == names.end()) {
            throw std::runtime_error(std::string(what).append(" has no member \"") + name + "\"");
        }
    }
}

}  // namespace sim
