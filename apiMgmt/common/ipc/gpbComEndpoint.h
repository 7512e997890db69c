#pragma once

#include <string>
#include <utility>

/// Where a peer of the IPC listens.
class GPBComEndpoint {
public:
    /// `address`: IPv4 in dotted form. `port`: 1 to 65535.
    GPBComEndpoint(std::string address, int port) : m_address(std::move(address)), m_port(port) {}

    const std::string& GetAddress() const { return m_address; }
    int GetPort() const { return m_port; }

private:
    std::string m_address;
    int m_port;
};
