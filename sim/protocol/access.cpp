#include "sim/protocol/access.h"

#include <stdexcept>

#include "sim/protocol/apiRequest.h"

namespace sim {

namespace {

std::set<std::string> texts(const Json& content, const char* name) {
    return content.value(name, std::set<std::string>());
}

}  // namespace

Access::Access(const Json& content) : m_anyone(false) {
    onlyMembers(content, "the credentials file", {"users", "tokens", "sessionKeys"});
    if (content.empty()) {
        throw std::runtime_error(
            "the credentials file needs \"users\", \"tokens\" or \"sessionKeys\"");
    }
    try {
        for (const Json& user : content.value("users", Json::array())) {
            onlyMembers(user, "a user", {"user", "password"});
            m_credentials.insert(user.at("user").get<std::string>() + ":" +
                                 user.at("password").get<std::string>());
        }
        m_tokens = texts(content, "tokens");
        m_sessionKeys = texts(content, "sessionKeys");
    } catch (const Json::exception&) {
        // Its message could quote a secret.
        throw std::runtime_error("the credentials file does not have the form it should have");
    }
}

bool Access::accepts(const ApiRequest& request) const {
    if (m_anyone) {
        return !request.credentials.empty() || !request.authToken.empty() ||
               !request.sessionKey.empty();
    }
    return m_credentials.count(request.credentials) > 0 || m_tokens.count(request.authToken) > 0 ||
           m_sessionKeys.count(request.sessionKey) > 0;
}

}  // namespace sim
