#pragma once

#include <cstddef>
#include <vector>

#include "apiMgmt/apiStub/apiSdk/objects/tarn/src/apiIpv4AddressPort.h"
#include "apiMgmt/apiStub/apiSdk/objects/tarn/src/apiNorvaneInterfaceInformation.h"
#include "apiMgmt/apiStub/base/apiObjects/base/baseApiMethodObject.h"
#include "apiMgmt/webservices/sanService/contract/sanContract.h"
#include "apiMgmt/webservices/sanService/serviceLog.h"

/// Records built from a request's list, for a method's list setter.
///
/// The setter keeps the records' text, so they need to live no longer than the call of it.
template <typename Record>
class RequestRecords {
public:
    /// Room for `most` records, so that none moves when another is added.
    explicit RequestRecords(std::size_t most) {
        m_records.reserve(most);
        m_view.reserve(most);
    }

    /// A further record, owned by this object, to be filled.
    Record& Add() {
        Record& added = m_records.emplace_back();
        m_view.push_back(&added);
        return added;
    }

    /// The records in the request's order, owned by this object.
    const std::vector<const BASEApiMethodObject*>& View() const { return m_view; }
    bool IsEmpty() const { return m_view.empty(); }

private:
    std::vector<Record> m_records;
    std::vector<const BASEApiMethodObject*> m_view;
};

/// What to do with an entry that has no address element at all.
enum class MissingAddress { Warn, Ignore };

/// One APIIpv4AddressPort for each usable entry. What cannot be used is left out:
/// - a nil entry, and the line @p skipped is logged
/// - an entry without an address element; @p missing says whether that line is logged
/// - an entry whose address is empty; nothing is logged
RequestRecords<APIIpv4AddressPort> buildAddressRecords(
    const std::vector<SanApi::ns1__IpAddressPort*>& entries, const ServiceLog::FixedEntry& skipped,
    MissingAddress missing);

/// One APINorvaneInterfaceInformation for each entry that is not nil.
RequestRecords<APINorvaneInterfaceInformation> buildInterfaceRecords(
    const std::vector<SanApi::ns1__interfaceObject*>& entries);
