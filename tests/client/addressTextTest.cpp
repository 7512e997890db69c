#include "client/call/addressText.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace {

using Rows = std::vector<std::pair<std::string, std::string>>;

std::string address(const std::string& text) {
    const client::Address parsed = client::parseAddress(text);
    return std::to_string(parsed.type) + "|" + parsed.host + "|" + std::to_string(parsed.port);
}

std::string interface(const std::string& text) {
    const client::Interface parsed = client::parseInterface(text);
    return parsed.id + "|" + std::to_string(parsed.type);
}

TEST(AddressText, PicksTheTypeByTheFormOfTheHost) {
    // Types on the wire: 1 ipv4, 2 ipv6, 3 dns.
    const Rows rows = {
        {"10.0.0.5:3260", "1|10.0.0.5|3260"},
        {"0.0.0.0:0", "1|0.0.0.0|0"},
        {"[::1]:65535", "2|::1|65535"},
        {"[fe80::1:2]:3260", "2|fe80::1:2|3260"},
        {"[::ffff:10.0.0.1]:1", "2|::ffff:10.0.0.1|1"},
        {"node-1.example.com:443", "3|node-1.example.com|443"},
        {"1and1.example:443", "3|1and1.example|443"},
        {std::string(253, 'n') + ":1", "3|" + std::string(253, 'n') + "|1"},
    };
    for (const auto& [text, expected] : rows) {
        EXPECT_EQ(address(text), expected);
    }
    const std::string tooLong = std::string(254, 'n') + ":1";
    for (const std::string text :
         {tooLong.c_str(), "", "10.0.0.5", "10.0.0.5:", "10.0.0.5:65536", "10.0.0.5:-1",
          "10.0.0.5: 80", "10.0.0.5:80x", "10.0.0.256:80", "::1:80", "[10.0.0.5]:80", "[::1]80",
          "[::1", ":80", "a..b:80", "two words:80"}) {
        try {
            ADD_FAILURE() << text << " was taken for " << address(text);
        } catch (const std::invalid_argument& failure) {
            EXPECT_NE(std::string(failure.what()).find(text), std::string::npos);
        }
    }
}

TEST(AddressText, TakesOnlyAKnownTransportOffAnInterface) {
    const Rows rows = {
        {"eth0", "eth0|0"},
        {"eth0:iscsi", "eth0|2"},
        {"10:00:00:90:fa:c7:00:01", "10:00:00:90:fa:c7:00:01|0"},
        {"10:00:00:90:fa:c7:00:fc", "10:00:00:90:fa:c7:00:fc|0"},
        {"10:00:00:90:fa:c7:00:fc:fc", "10:00:00:90:fa:c7:00:fc|1"},
        {"iqn.2001-04.com.example:node", "iqn.2001-04.com.example:node|0"},
        {"iqn.2001-04.com.example:node:iscsi", "iqn.2001-04.com.example:node|2"},
        {"eth0:1:unknown", "eth0:1|0"},
    };
    for (const auto& [text, expected] : rows) {
        EXPECT_EQ(interface(text), expected);
    }
    for (const std::string text : {"", ":fc", "w:foo", "w:FC", "eth0:", "10:00:00:90:fa:c7:00"}) {
        EXPECT_THROW(interface(text), std::invalid_argument) << text;
    }
}

}  // namespace
