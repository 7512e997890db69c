#pragma once

#include <cstdint>
#include <limits>
#include <string>
#include <string_view>
#include <vector>

#include "sim/text/jsonText.h"

namespace sim {

/// A value of somebody's JSON and where it stands, for reading it with errors that help. Each
/// reader throws std::runtime_error that names the place and the rule, never the value itself,
/// for there may be secrets:
///
///     const JsonNode seed(json, "lab.json");
///     for (const JsonNode& cluster : seed.list("clusters")) {
///         cluster.only({"id", "name"});
///         use(cluster.text("id"));    // "lab.json: clusters[1].id is missing"
///     }
///
/// Refers to the JSON, which has to outlive it.
class JsonNode {
public:
    static constexpr std::int64_t kMaxNumber = std::numeric_limits<std::int64_t>::max();

    /// `source`: what the messages call the whole, such as a file's name.
    JsonNode(const Json& value, std::string source);

    const Json& json() const { return *m_value; }
    bool has(const char* name) const;
    /// An object that has no members but these.
    void only(const std::vector<std::string_view>& names) const;

    /// A member that has to be there and to be a text that is not empty.
    std::string text(const char* name) const;
    std::string text(const char* name, const std::string& fallback) const;
    /// A whole number from 0 to `max`.
    std::int64_t number(const char* name, std::int64_t fallback,
                        std::int64_t max = kMaxNumber) const;
    bool flag(const char* name, bool fallback) const;
    /// An absent member is an empty list.
    std::vector<JsonNode> list(const char* name) const;
    std::vector<std::string> texts(const char* name) const;
    /// A member that is there.
    JsonNode member(const char* name) const;

    /// Throws the error: "SOURCE: PLACE RULE".
    [[noreturn]] void fail(const std::string& rule) const;

private:
    const Json* m_value;
    std::string m_source;
    std::string m_place;  // "clusters[1].id"; empty for the whole

    JsonNode(const Json& value, std::string source, std::string place);
    const Json* find(const char* name) const;
    std::string asText() const;
};

}  // namespace sim
