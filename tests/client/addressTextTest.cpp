#include "client/call/addressText.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <utility>

namespace {

/// What is read of a text; empty when it is refused with a message that quotes it.
template <class Read>
std::string readOrRefused(const std::string& text, Read read) {
    try {
        return read(text);
    } catch (const std::invalid_argument& failure) {
        EXPECT_NE(std::string(failure.what()).find(text), std::string::npos);
        return "";
    }
}

TEST(AddressText, PicksTheTypeByTheFormOfTheHost) {
    // Types on the wire: 1 ipv4, 2 ipv6, 3 dns.
    const std::pair<std::string, std::string> rows[] = {
        // clang-format off
        {"10.0.0.5:3260",              "1|10.0.0.5|3260"},
        {"0.0.0.0:0",                  "1|0.0.0.0|0"},
        {"[::1]:65535",                "2|::1|65535"},
        {"[fe80::1:2]:3260",           "2|fe80::1:2|3260"},
        {"[::ffff:10.0.0.1]:1",        "2|::ffff:10.0.0.1|1"},
        {"node-1.example.com:443",     "3|node-1.example.com|443"},
        {"1and1.example:443",          "3|1and1.example|443"},
        {std::string(253, 'n') + ":1", "3|" + std::string(253, 'n') + "|1"},
        {std::string(254, 'n') + ":1", ""},
        {"", ""}, {"10.0.0.5", ""}, {"10.0.0.5:", ""}, {"10.0.0.5:65536", ""}, {"10.0.0.5:-1", ""},
        {"10.0.0.5: 80", ""}, {"10.0.0.5:80x", ""}, {"10.0.0.256:80", ""}, {"::1:80", ""},
        {"[10.0.0.5]:80", ""}, {"[::1]80", ""}, {"[::1", ""}, {":80", ""}, {"a..b:80", ""},
        {"two words:80", ""},
        // clang-format on
    };
    for (const auto& [text, expected] : rows) {
        EXPECT_EQ(readOrRefused(text,
                                [](const std::string& read) {
                                    const client::Address parsed = client::parseAddress(read);
                                    return std::to_string(parsed.type) + "|" + parsed.host + "|" +
                                           std::to_string(parsed.port);
                                }),
                  expected)
            << text;
    }
}

TEST(AddressText, TakesOnlyAKnownTransportOffAnInterface) {
    const std::pair<std::string, std::string> rows[] = {
        // clang-format off
        {"eth0",                               "eth0|0"},
        {"eth0:iscsi",                         "eth0|2"},
        {"10:00:00:90:fa:c7:00:01",            "10:00:00:90:fa:c7:00:01|0"},
        {"10:00:00:90:fa:c7:00:fc",            "10:00:00:90:fa:c7:00:fc|0"},
        {"10:00:00:90:fa:c7:00:fc:fc",         "10:00:00:90:fa:c7:00:fc|1"},
        {"iqn.2001-04.com.example:node",       "iqn.2001-04.com.example:node|0"},
        {"iqn.2001-04.com.example:node:iscsi", "iqn.2001-04.com.example:node|2"},
        {"eth0:1:unknown",                     "eth0:1|0"},
        {"", ""}, {":fc", ""}, {"w:foo", ""}, {"w:FC", ""}, {"eth0:", ""},
        {"10:00:00:90:fa:c7:00", ""},
        // clang-format on
    };
    for (const auto& [text, expected] : rows) {
        EXPECT_EQ(readOrRefused(text,
                                [](const std::string& read) {
                                    const client::Interface parsed = client::parseInterface(read);
                                    return parsed.id + "|" + std::to_string(parsed.type);
                                }),
                  expected)
            << text;
    }
}

}  // namespace
