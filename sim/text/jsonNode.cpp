#include "sim/text/jsonNode.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace sim {

JsonNode::JsonNode(const Json& value, std::string source)
    : JsonNode(value, std::move(source), "") {}

JsonNode::JsonNode(const Json& value, std::string source, std::string place)
    : m_value(&value), m_source(std::move(source)), m_place(std::move(place)) {}

void JsonNode::fail(const std::string& rule) const {
    throw std::runtime_error(m_source + (m_place.empty() ? " " : ": " + m_place + " ") + rule);
}

const Json* JsonNode::find(const char* name) const {
    if (!m_value->is_object()) {
        fail("has to be an object");
    }
    const auto found = m_value->find(name);
    return found == m_value->end() ? nullptr : &*found;
}

bool JsonNode::has(const char* name) const {
    return find(name) != nullptr;
}

JsonNode JsonNode::member(const char* name) const {
    const Json* value = find(name);
    JsonNode node(value != nullptr ? *value : *m_value, m_source,
                  m_place + (m_place.empty() ? "" : ".") + name);
    if (value == nullptr) {
        node.fail("is missing");
    }
    return node;
}

void JsonNode::only(const std::vector<std::string_view>& names) const {
    if (!m_value->is_object()) {
        fail("has to be an object");
    }
    for (const auto& [name, value] : m_value->items()) {
        if (std::find(names.begin(), names.end(), name) == names.end()) {
            std::string rule = "has no member \"";
            rule.append(name).append("\"; its members are ");
            for (const std::string_view one : names) {
                rule.append(one == names.front() ? "" : ", ").append(one);
            }
            fail(rule);
        }
    }
}

std::string JsonNode::asText() const {
    if (!m_value->is_string()) {
        fail("has to be a text");
    }
    return m_value->get<std::string>();
}

std::string JsonNode::text(const char* name) const {
    const JsonNode node = member(name);
    std::string out = node.asText();
    if (out.empty()) {
        node.fail("must not be empty");
    }
    return out;
}

std::string JsonNode::text(const char* name, const std::string& fallback) const {
    return has(name) ? member(name).asText() : fallback;
}

std::int64_t JsonNode::number(const char* name, std::int64_t fallback, std::int64_t max) const {
    if (!has(name)) {
        return fallback;
    }
    const JsonNode node = member(name);
    // Beyond the signed range the library keeps a number as unsigned.
    const bool fits = node.m_value->is_number_integer() &&
                      (!node.m_value->is_number_unsigned() ||
                       node.m_value->get<std::uint64_t>() <= static_cast<std::uint64_t>(max));
    if (!fits || node.m_value->get<std::int64_t>() < 0 || node.m_value->get<std::int64_t>() > max) {
        node.fail(max == kMaxNumber ? "has to be a whole number, 0 or more"
                                    : "has to be a number from 0 to " + std::to_string(max));
    }
    return node.m_value->get<std::int64_t>();
}

bool JsonNode::flag(const char* name, bool fallback) const {
    if (!has(name)) {
        return fallback;
    }
    const JsonNode node = member(name);
    if (!node.m_value->is_boolean()) {
        node.fail("has to be true or false");
    }
    return node.m_value->get<bool>();
}

std::vector<JsonNode> JsonNode::list(const char* name) const {
    std::vector<JsonNode> out;
    if (!has(name)) {
        return out;
    }
    const JsonNode node = member(name);
    if (!node.m_value->is_array()) {
        node.fail("has to be a list");
    }
    for (const Json& item : *node.m_value) {
        out.push_back(
            JsonNode(item, m_source, node.m_place + "[" + std::to_string(out.size()) + "]"));
    }
    return out;
}

std::vector<std::string> JsonNode::texts(const char* name) const {
    std::vector<std::string> out;
    for (const JsonNode& item : list(name)) {
        out.push_back(item.asText());
    }
    return out;
}

}  // namespace sim
