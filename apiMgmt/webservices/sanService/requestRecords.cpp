#include "apiMgmt/webservices/sanService/requestRecords.h"

#include <optional>

namespace {

// The text of whichever kind of address the entry carries; null when it carries none. The kind
// is not looked at: the record turns what is no IPv4 address into "0.0.0.0".
const std::string* addressText(const SanApi::ns1__InetAddress& address) {
    const auto& choice = address.union_InetAddress;
    switch (address.__union_InetAddress) {
        case SOAP_UNION_SanApi_ns1__union_InetAddress_ipv4Addr:
            return choice.ipv4Addr;
        case SOAP_UNION_SanApi_ns1__union_InetAddress_ipv6Addr:
            return choice.ipv6Addr;
        case SOAP_UNION_SanApi_ns1__union_InetAddress_dnsAddr:
            return choice.dnsAddr;
        case SOAP_UNION_SanApi_ns1__union_InetAddress_addr:
            return choice.addr;
        default:
            return nullptr;
    }
}

// The transport that a kind of interface stands for; a kind that is not known sets none.
std::optional<FrontEndTransportTypeEnum> transportOf(SanApi::ns1__InterfaceType type) {
    switch (type) {
        case SanApi::ns1__InterfaceType__unknown:
            return FrontEndTransportTypeEnum::Unknown;
        case SanApi::ns1__InterfaceType__fc:
            return FrontEndTransportTypeEnum::FibreChannel;
        case SanApi::ns1__InterfaceType__iscsi:
            return FrontEndTransportTypeEnum::Iscsi;
        default:
            return std::nullopt;
    }
}

}  // namespace

RequestRecords<APIIpv4AddressPort> buildAddressRecords(
    const std::vector<SanApi::ns1__IpAddressPort*>& entries, const ServiceLog::FixedEntry& skipped,
    MissingAddress missing) {
    RequestRecords<APIIpv4AddressPort> records(entries.size());
    for (const SanApi::ns1__IpAddressPort* entry : entries) {
        if (entry == nullptr || (entry->ipAddress == nullptr && missing == MissingAddress::Warn)) {
            ServiceLog::Write(skipped);
            continue;
        }
        const std::string* text =
            entry->ipAddress != nullptr ? addressText(*entry->ipAddress) : nullptr;
        if (text == nullptr || text->empty()) {
            continue;
        }
        APIIpv4AddressPort& record = records.Add();
        record.SetIpv4Address(*text);
        record.SetPort(entry->port);
    }
    return records;
}

RequestRecords<APINorvaneInterfaceInformation> buildInterfaceRecords(
    const std::vector<SanApi::ns1__interfaceObject*>& entries) {
    RequestRecords<APINorvaneInterfaceInformation> records(entries.size());
    for (const SanApi::ns1__interfaceObject* entry : entries) {
        if (entry == nullptr) {
            continue;
        }
        APINorvaneInterfaceInformation& record = records.Add();
        if (entry->intfType != nullptr) {
            if (const auto transport = transportOf(*entry->intfType)) {
                record.SetInterfaceType(*transport);
            }
        }
        record.SetInterfaceId(entry->intfId);
    }
    return records;
}
