#include "client/addressText.h"

#include <gtest/gtest.h>

#include <optional>
#include <stdexcept>
#include <vector>

namespace {

// Parses and writes back as "type|host|port" or gives nothing when the text is refused.
std::optional<std::string> address(const std::string& text) {
    try {
        const client::Address parsed = client::parseAddress(text);
        return std::to_string(parsed.type) + "|" + parsed.host + "|" + std::to_string(parsed.port);
    } catch (const std::invalid_argument& error) {
        EXPECT_NE(std::string(error.what()).find(text), std::string::npos);
        return std::nullopt;
    }
}

std::optional<std::string> interface(const std::string& text) {
    try {
        const client::Interface parsed = client::parseInterface(text);
        return parsed.id + "|" + std::to_string(parsed.type);
    } catch (const std::invalid_argument&) {
        return std::nullopt;
    }
}

TEST(AddressText, picksTheTypeByTheFormOfTheHost) {
    // Types on the wire: 1 ipv4, 2 ipv6, 3 dns.
    const std::vector<std::pair<std::string, std::optional<std::string>>> rows = {
        {"10.0.0.5:3260", "1|10.0.0.5|3260"},
        {"0.0.0.0:0", "1|0.0.0.0|0"},
        {"[::1]:65535", "2|::1|65535"},
        {"[fe80::1:2]:3260", "2|fe80::1:2|3260"},
        {"[::ffff:10.0.0.1]:1", "2|::ffff:10.0.0.1|1"},
        {"node-1.example.com:443", "3|node-1.example.com|443"},
        {"1and1.example:443", "3|1and1.example|443"},
        {"", std::nullopt},
        {"10.0.0.5", std::nullopt},
        {"10.0.0.5:", std::nullopt},
        {"10.0.0.5:65536", std::nullopt},
        {"10.0.0.5:-1", std::nullopt},
        {"10.0.0.5: 80", std::nullopt},
        {"10.0.0.5:80x", std::nullopt},
        {"10.0.0.256:80", std::nullopt},
        {"::1:80", std::nullopt},
        {"[10.0.0.5]:80", std::nullopt},
        {"[::1]80", std::nullopt},
        {"[::1", std::nullopt},
        {":80", std::nullopt},
        {"a..b:80", std::nullopt},
        {"two words:80", std::nullopt},
    };
    for (const auto& [text, expected] : rows) {
        EXPECT_EQ(address(text), expected) << text;
    }
}

TEST(AddressText, takesOnlyAKnownTransportOffAnInterface) {
    const std::vector<std::pair<std::string, std::optional<std::string>>> rows = {
        {"eth0", "eth0|0"},
        {"eth0:iscsi", "eth0|2"},
        {"10:00:00:90:fa:c7:00:01", "10:00:00:90:fa:c7:00:01|0"},
        {"10:00:00:90:fa:c7:00:fc", "10:00:00:90:fa:c7:00:fc|0"},
        {"10:00:00:90:fa:c7:00:fc:fc", "10:00:00:90:fa:c7:00:fc|1"},
        {"iqn.2001-04.com.example:node", "iqn.2001-04.com.example:node|0"},
        {"", std::nullopt},
        {":fc", std::nullopt},
    };
    for (const auto& [text, expected] : rows) {
        EXPECT_EQ(interface(text), expected) << text;
    }
}

}  // namespace
