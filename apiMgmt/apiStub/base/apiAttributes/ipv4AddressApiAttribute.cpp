#include "apiMgmt/apiStub/base/apiAttributes/ipv4AddressApiAttribute.h"

#include <arpa/inet.h>

#include <cstdint>
#include <optional>

#include "apiMgmt/apiStub/base/apiAttributes/filterMatching.h"
#include "apiMgmt/apiStub/base/filters/apiAttributeFilter.h"

namespace {

/// The address in host byte order; nothing when the text is not well formed.
std::optional<std::uint32_t> readAddress(const std::string& text) {
    in_addr address{};
    if (text.find('\0') != std::string::npos || inet_pton(AF_INET, text.c_str(), &address) != 1) {
        return std::nullopt;
    }
    return ntohl(address.s_addr);
}

}  // namespace

std::string IPV4ADDRESSApiAttribute::ToString(const std::string& value) const {
    return readAddress(value) ? value : "0.0.0.0";
}

std::string IPV4ADDRESSApiAttribute::ParseString(const std::string& text) const {
    return ToString(text);
}

bool IPV4ADDRESSApiAttribute::ApplyFilter(const APIAttributeFilter& filter,
                                          const std::string& value) const {
    const auto left = readAddress(value);
    const auto right = readAddress(filter.GetValue());
    return left && right && matchesOrder(filter.GetType(), *left <=> *right);
}
