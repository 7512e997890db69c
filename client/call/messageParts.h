#pragma once

#include <memory>
#include <string>
#include <vector>

#include "client/call/addressText.h"

namespace client {

/// Owns what a request points to: the generated messages hold their lists and optional members
/// as plain pointers.
///
///     MessageParts parts;
///     SanApi::ns1__AddHccToSan request;
///     request.hccName = parts.text("cluster 1");
///     request.cfmIpAddresses.push_back(parts.address(parseAddress("10.0.0.5:3260")));
///
/// Everything handed out lives until the object goes; a message must not outlive it in use.
class MessageParts {
public:
    /// A default-constructed part.
    template <class Part>
    Part* make() {
        auto part = std::make_shared<Part>();
        Part* const raw = part.get();
        m_parts.push_back(std::move(part));
        return raw;
    }

    std::string* text(std::string value);
    SanApi::ns1__IpAddressPort* address(const Address& value);
    SanApi::ns1__interfaceObject* interface(const Interface& value);

private:
    std::vector<std::shared_ptr<void>> m_parts;
};

}  // namespace client
