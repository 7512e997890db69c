#pragma once

#include <set>
#include <string>

#include "sim/text/jsonText.h"

namespace sim {

struct ApiRequest;

/// Whose requests the array accepts.
class Access {
public:
    /// Accepts every request that brings credentials, a token or a session key.
    Access() = default;
    /// Accepts what the content of the credentials file `source` names (docs/simulator.md). Throws
    /// std::runtime_error when it is wrong.
    Access(const Json& json, const std::string& source);

    bool accepts(const ApiRequest& request) const;

private:
    bool m_anyone = true;
    std::set<std::string> m_credentials;  // "user:password", as clusters send them
    std::set<std::string> m_tokens;
    std::set<std::string> m_sessionKeys;
};

}  // namespace sim
