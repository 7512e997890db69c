#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace protoIPCMsg {
class GPBIPCMsg;
}

namespace sim {

/// What people call a command or an association: "TarnHostCache::Ping".
std::string commandLabel(std::string_view object, std::string_view name);

/// A record inside a list attribute: element name to text.
using Record = std::map<std::string, std::string>;

/// One request of the management API, taken out of its IPC message and its document.
struct ApiRequest {
    std::string clientAddress;
    // Who asks. Secrets: never copied into a log or a reply.
    std::string credentials;
    std::string authToken;
    std::string sessionKey;
    std::string schemaVersion;
    std::string hccId;  // of the IPC header
    std::vector<std::string> blobNames;

    std::string document;
    bool isAssociation = false;
    std::string object;
    std::string command;
    std::string encoding;
    /// XML name to text; a list attribute holds the markup of its records.
    std::map<std::string, std::string> attributes;

    bool has(const std::string& name) const;
    /// The text, or empty when it was not sent.
    const std::string& text(const std::string& name) const;
    /// The records of a list attribute that bear this element name; empty when it was not sent.
    std::vector<Record> records(const std::string& name, std::string_view recordName) const;
    /// "TarnHostCache::Ping", or what is known of it.
    std::string label() const;
};

/// Fills `request`. Raises Refusal when the message or its document is not an API request;
/// what was understood up to there stays in `request`.
void readRequest(const protoIPCMsg::GPBIPCMsg& message, ApiRequest& request);

}  // namespace sim
