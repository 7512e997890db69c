#pragma once

#include <initializer_list>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

namespace sim {

/// JSON that keeps the order of its members.
using Json = nlohmann::ordered_json;

/// The text of `value`; bytes that are not UTF-8 become replacement characters.
/// `indent`: blanks for each level, -1 for one line.
std::string jsonText(const Json& value, int indent = -1);

/// The JSON in a file. Throws std::runtime_error that names the file.
Json readJsonFile(const std::string& file);

/// Throws std::runtime_error unless `value` is an object that has no members but these; `what`
/// names it in the message.
void onlyMembers(const Json& value, const std::string& what,
                 std::initializer_list<std::string_view> names);

}  // namespace sim
