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

/// The JSON of `text`. Throws std::runtime_error that names `what` and the line that is wrong; it
/// quotes nothing, for there may be secrets.
Json parseJson(const std::string& text, const std::string& what);

/// The JSON in a file. Throws std::runtime_error that names the file.
Json readJsonFile(const std::string& file);

/// What the JSON library says, without the mark that it sets before.
std::string plainText(const Json::exception& problem);

/// Throws std::runtime_error unless `value` is an object that has no members but these; `what`
/// names it in the message.
void onlyMembers(const Json& value, const std::string& what,
                 std::initializer_list<std::string_view> names);

}  // namespace sim
