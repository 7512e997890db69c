#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

namespace sim {

/// JSON that keeps the order of its members.
using Json = nlohmann::ordered_json;

/// The text of `value`; bytes that are not UTF-8 become replacement characters.
/// `indent`: blanks for each level, -1 for one line.
std::string jsonText(const Json& value, int indent = -1);

/// The JSON of `text`. Throws std::runtime_error that names `what` and the line that is wrong; it
/// quotes nothing, for there may be secrets.
Json parseJson(const std::string& text, const std::string& what);

/// The JSON in a file. Throws std::runtime_error that names the file.
Json readJsonFile(const std::string& file);

}  // namespace sim
