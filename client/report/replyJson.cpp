#include "client/report/replyJson.h"

namespace client {

namespace {

Json optional(const std::string* text) {
    return text == nullptr ? Json() : Json(*text);
}

// The text of whichever choice the address carries, as it would be given to --address.
std::string addressText(const SanApi::ns1__IpAddressPort& entry) {
    const auto* inet = entry.ipAddress;
    const bool hasText =
        inet != nullptr && inet->__union_InetAddress > 0 && inet->union_InetAddress.addr != nullptr;
    const std::string host = hasText ? *inet->union_InetAddress.addr : "";
    const bool isIpv6 = host.find(':') != std::string::npos;
    return (isIpv6 ? "[" + host + "]" : host) + ":" + std::to_string(entry.port);
}

}  // namespace

Json toJson(const SanApi::ns1__resultObject* result) {
    if (result == nullptr) {
        return nullptr;
    }
    auto addresses = Json::array();
    for (const auto* entry : result->ipAddresses) {
        if (entry != nullptr) {
            addresses.push_back(addressText(*entry));
        }
    }
    return {{"catalogNumber", result->catalogNumber},
            {"defaultMsg", optional(result->defaultMsg)},
            {"msgArgs", result->msgArgs},
            {"resultCode", result->resultCode},
            {"ipAddresses", addresses}};
}

Json toJson(const SanApi::ns1__void* nothing) {
    return nothing == nullptr ? Json() : Json::object();
}

Json toJson(const SanApi::ns1__scsiInfo* identity) {
    if (identity == nullptr) {
        return nullptr;
    }
    return {{"deviceId", identity->deviceId}, {"serialNumber", optional(identity->serialNumber)}};
}

}  // namespace client
