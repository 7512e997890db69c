#pragma once

#include <string>
#include <vector>

#include "apiMgmt/webservices/sanService/contract/sanContract.h"
#include "apiMgmt/webservices/sanService/serviceLog.h"

/// What to do with an entry that has no address element at all.
enum class MissingAddress { Warn, Ignore };

/// A request's list as a method keeps it: the text of one APIIpv4AddressPort for each usable entry.
/// What cannot be used is left out:
/// - a nil entry, and the line @p skipped is logged, for 500 entries at most
/// - an entry without an address element; @p missing says whether that line is logged
/// - an entry whose address is empty; nothing is logged
std::string addressRecords(const std::vector<SanApi::ns1__IpAddressPort*>& entries,
                           const ServiceLog::FixedEntry& skipped, MissingAddress missing);

/// The same of one APINorvaneInterfaceInformation for each entry that is not nil.
std::string interfaceRecords(const std::vector<SanApi::ns1__interfaceObject*>& entries);
