#include "client/call/addressText.h"

#include <arpa/inet.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>
#include <stdexcept>

namespace client {

namespace {

struct Transport {
    std::string_view name;
    SanApi::ns1__InterfaceType type;
};

// How to add one: a row; the contract's enumeration has to know it.
constexpr std::array kTransports = {
    Transport{"fc", SanApi::ns1__InterfaceType__fc},
    Transport{"iscsi", SanApi::ns1__InterfaceType__iscsi},
    Transport{"unknown", SanApi::ns1__InterfaceType__unknown},
};

constexpr std::size_t kMaxDnsName = 253;

[[noreturn]] void refuse(std::string_view text, const std::string& why) {
    throw std::invalid_argument("'" + std::string(text) + "': " + why);
}

bool isAddressOf(int family, const std::string& host) {
    std::array<unsigned char, sizeof(in6_addr)> octets{};
    return inet_pton(family, host.c_str(), octets.data()) == 1;
}

bool isDnsName(std::string_view host) {
    const auto belongs = [](unsigned char c) {
        return std::isalnum(c) != 0 || c == '-' || c == '.' || c == '_';
    };
    // Digits and points alone are a mistyped IPv4 address, which no name server knows.
    const bool onlyDigits = host.find_first_not_of("0123456789.") == std::string_view::npos;
    return !host.empty() && host.size() <= kMaxDnsName && !onlyDigits && host.front() != '.' &&
           host.find("..") == std::string_view::npos &&
           std::all_of(host.begin(), host.end(), belongs);
}

// Eight octets such as 10:00:00:90:fa:c7:00:fc, whose last one can look like a transport.
bool isWorldWideName(std::string_view text) {
    constexpr std::size_t kLength = 8 * 3 - 1;
    if (text.size() != kLength) {
        return false;
    }
    for (std::size_t i = 0; i < kLength; ++i) {
        const auto c = static_cast<unsigned char>(text[i]);
        if (i % 3 == 2 ? c != ':' : std::isxdigit(c) == 0) {
            return false;
        }
    }
    return true;
}

bool isIscsiName(std::string_view text) {
    return text.starts_with("iqn.") || text.starts_with("eui.") || text.starts_with("naa.");
}

unsigned short parsePort(std::string_view text, std::string_view port) {
    unsigned short number = 0;
    const char* end = port.data() + port.size();
    const auto [read, error] = std::from_chars(port.data(), end, number);
    if (error != std::errc() || read != end) {
        refuse(text, "the port must be a number from 0 to 65535");
    }
    return number;
}

Address parseBracketed(std::string_view text) {
    const std::size_t close = text.find("]:");
    if (close == std::string_view::npos) {
        refuse(text, "expected [IPV6]:PORT");
    }
    const std::string host(text.substr(1, close - 1));
    if (!isAddressOf(AF_INET6, host)) {
        refuse(text, "the text in brackets is no IPv6 address");
    }
    return {SanApi::ns1__InetAddressType__ipv6, host, parsePort(text, text.substr(close + 2))};
}

}  // namespace

Address parseAddress(std::string_view text) {
    if (text.starts_with('[')) {
        return parseBracketed(text);
    }
    const std::size_t colon = text.find(':');
    if (colon == std::string_view::npos) {
        refuse(text, "expected IP:PORT");
    }
    if (text.find(':', colon + 1) != std::string_view::npos) {
        refuse(text, "an IPv6 address is written as [IPV6]:PORT");
    }
    const std::string host(text.substr(0, colon));
    const bool isIpv4 = isAddressOf(AF_INET, host);
    if (!isIpv4 && !isDnsName(host)) {
        refuse(text, "neither an IP address nor a DNS name stands before the port");
    }
    return {isIpv4 ? SanApi::ns1__InetAddressType__ipv4 : SanApi::ns1__InetAddressType__dns, host,
            parsePort(text, text.substr(colon + 1))};
}

bool isNumericAddress(const std::string& host) {
    return isAddressOf(AF_INET, host) || isAddressOf(AF_INET6, host);
}

Interface parseInterface(std::string_view text) {
    Interface result{std::string(text), SanApi::ns1__InterfaceType__unknown};
    const std::size_t colon = text.rfind(':');
    if (colon != std::string_view::npos && !isWorldWideName(text)) {
        const std::string_view word = text.substr(colon + 1);
        const auto* transport =
            std::find_if(kTransports.begin(), kTransports.end(),
                         [word](const Transport& row) { return row.name == word; });
        if (transport != kTransports.end()) {
            result = {std::string(text.substr(0, colon)), transport->type};
        } else if (!isIscsiName(text)) {
            refuse(text, "'" + std::string(word) +
                             "' is no transport (fc, iscsi, or unknown behind an id with colons)");
        }
    }
    if (result.id.empty()) {
        refuse(text, "an interface needs an id: ID, ID:fc or ID:iscsi");
    }
    return result;
}

}  // namespace client
