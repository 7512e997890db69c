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
    } catch (const Json::parse_error& failure) {
        // The byte is counted from 1.
        const std::string before = text.substr(0, std::max<std::size_t>(failure.byte, 1) - 1);
        const auto line = std::count(before.begin(), before.end(), '\n') + 1;
        throw std::runtime_error(what + " is no JSON: line " + std::to_string(line) + " is wrong");
    } catch (const Json::exception&) {
        throw std::runtime_error(what + " holds a number that is too large");
    }
}

Json readJsonFile(const std::string& file) {
    std::ifstream in(file);
    in.peek();  // A folder can be opened, and not read.
    if (!in.is_open() || in.bad()) {
        throw std::runtime_error("cannot read " + file);
    }
    return parseJson({std::istreambuf_iterator<char>(in), {}}, file);
}

}  // namespace sim
