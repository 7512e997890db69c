#include "sim/protocol/access.h"

#include "sim/protocol/apiRequest.h"
#include "sim/text/jsonNode.h"

namespace sim {

namespace {

std::set<std::string> textSet(const JsonNode& content, const char* name) {
    const std::vector<std::string> texts = content.texts(name);
    return {texts.begin(), texts.end()};
}

}  // namespace

Access::Access(const Json& json, const std::string& source) : m_anyone(false) {
    const JsonNode content(json, source);
    content.only({"users", "tokens", "sessionKeys"});
    if (json.empty()) {
        content.fail("needs \"users\", \"tokens\" or \"sessionKeys\"");
    }
    for (const JsonNode& user : content.list("users")) {
        user.only({"user", "password"});
        m_credentials.insert(user.text("user") + ":" + user.text("password"));
    }
    m_tokens = textSet(content, "tokens");
    m_sessionKeys = textSet(content, "sessionKeys");
}

bool Access::accepts(const ApiRequest& request) const {
    if (m_anyone) {
        return !request.credentials.empty() || !request.authToken.empty() ||
               !request.sessionKey.empty();
    }
    return m_credentials.contains(request.credentials) || m_tokens.contains(request.authToken) ||
           m_sessionKeys.contains(request.sessionKey);
}

}  // namespace sim
