#include "apiMgmt/webservices/sanService/requestRecords.h"

#include <cstddef>
#include <optional>

#include "apiMgmt/apiStub/apiSdk/objects/tarn/src/apiIpv4AddressPort.h"
#include "apiMgmt/apiStub/apiSdk/objects/tarn/src/apiNorvaneInterfaceInformation.h"

namespace {

// A line costs more than reading the entry that it is about, so a list of nothing else would take
// the log and the processor for itself. No sensible list has so many entries at all.
constexpr std::size_t kMaxToldEntries = 500;

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

std::string addressRecords(const std::vector<SanApi::ns1__IpAddressPort*>& entries,
                           const ServiceLog::FixedEntry& skipped, MissingAddress missing) {
    std::string text;
    std::size_t unusable = 0;
    APIIpv4AddressPort record;  // one for all: each entry sets all of it
    for (const SanApi::ns1__IpAddressPort* entry : entries) {
        if (entry == nullptr || (entry->ipAddress == nullptr && missing == MissingAddress::Warn)) {
            if (unusable++ < kMaxToldEntries) {
                ServiceLog::Write(skipped);
            }
            continue;
        }
        const std::string* address =
            entry->ipAddress != nullptr ? addressText(*entry->ipAddress) : nullptr;
        if (address == nullptr || address->empty()) {
            continue;
        }
        record.SetIpv4Address(*address);
        record.SetPort(entry->port);
        record.AppendXMLString(text, true);
    }
    return text;
}

std::string interfaceRecords(const std::vector<SanApi::ns1__interfaceObject*>& entries) {
    std::string text;
    for (const SanApi::ns1__interfaceObject* entry : entries) {
        if (entry == nullptr) {
            continue;
        }
        APINorvaneInterfaceInformation record;
        if (entry->intfType != nullptr) {
            if (const auto transport = transportOf(*entry->intfType)) {
                record.SetInterfaceType(*transport);
            }
        }
        record.SetInterfaceId(entry->intfId);
        record.AppendXMLString(text, true);
    }
    return text;
}
