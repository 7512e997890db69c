#include "sim/simctl/control.h"

#include <httplib.h>

#include <stdexcept>

namespace sim {

namespace {

constexpr const char* kRoot = "/api/v1";
constexpr const char* kJsonType = "application/json";
constexpr int kOk = 200;

}  // namespace

Control::Control(const ControlPlace& place)
    : m_where(place.url.empty() ? place.socketPath : place.url),
      m_client(std::make_unique<httplib::Client>(m_where)) {
    if (place.url.empty()) {
        m_client->set_address_family(AF_UNIX);
    }
    httplib::Headers headers{{"Content-Type", kJsonType}};
    if (!place.token.empty()) {
        headers.emplace("Authorization", "Bearer " + place.token);
    }
    m_client->set_default_headers(headers);
}

Control::~Control() = default;

Json Control::get(const std::string& path) {
    return read(m_client->Get(kRoot + path));
}

Json Control::post(const std::string& path, const Json& body) {
    return read(m_client->Post(kRoot + path, jsonText(body), kJsonType));
}

Json Control::put(const std::string& path, const Json& body) {
    return read(m_client->Put(kRoot + path, jsonText(body), kJsonType));
}

Json Control::remove(const std::string& path) {
    return read(m_client->Delete(kRoot + path));
}

Json Control::read(const httplib::Result& result) const {
    if (!result) {
        throw std::runtime_error("no simulator answers at " + m_where);
    }
    Json json = Json::parse(result->body, nullptr, false);
    if (result->status == kOk && !json.is_discarded()) {
        return json;
    }
    if (json.is_object() && json.contains("error") && json["error"].is_string()) {
        throw RefusedBySimulator(json["error"].get<std::string>());
    }
    throw std::runtime_error("what answers at " + m_where + " is no simulator of this version");
}

std::string queryText(const std::string& text) {
    return httplib::detail::encode_query_param(text);
}

}  // namespace sim
