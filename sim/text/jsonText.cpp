#include "sim/text/jsonText.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace sim {

std::string jsonText(const Json& value, int indent) {
    return value.dump(indent, ' ', false, Json::error_handler_t::replace);
}

Json parseJson(const std::string& text, const std::string& what) {
    try {
        return Json::parse(text);
    } catch (const Json::parse_error& problem) {
        // The byte is counted from 1.
        const std::string before = text.substr(0, std::max<std::size_t>(problem.byte, 1) - 1);
        const auto line = std::count(before.begin(), before.end(), '\n') + 1;
        throw std::runtime_error(what + " is no JSON: line " + std::to_string(line) + " is wrong");
    } catch (const Json::exception& problem) {
        throw std::runtime_error(what + ": " + plainText(problem));
    }
}

Json readJsonFile(const std::string& file) {
    std::ifstream in(file);
    if (!in) {
        throw std::runtime_error("cannot read " + file);
    }
    return parseJson({std::istreambuf_iterator<char>(in), {}}, file);
}

std::string plainText(const Json::exception& problem) {
    const std::string text = problem.what();
    const auto end = text.find("] ");
    return end == std::string::npos ? text : text.substr(end + 2);
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
