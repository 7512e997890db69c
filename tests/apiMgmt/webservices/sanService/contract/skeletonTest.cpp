// The skeleton's shape is part of the interface: a service that was built against it is called
// through these slots.
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "apiMgmt/webservices/sanService/contract/sanContract.h"

namespace {

using Skeleton = SanApi::SanApiPortBindingService;

// The slot of a virtual function, as the C++ ABI of this platform writes it into a pointer to
// member: the offset in the table plus one.
template <typename Function>
long slotOf(Function function) {
    long word = 0;
    std::memcpy(&word, &function, sizeof word);
    return (word - 1) / static_cast<long>(sizeof(void*));
}

template <typename... Arguments>
using Fault = int (Skeleton::*)(Arguments...);

TEST(Skeleton, hasItsVirtualFunctionsInTheAgreedOrder) {
    using Text = const char*;
    const std::vector<std::pair<std::string, long>> expected = {
        // The two destructors take the first two slots.
        {"destroy", slotOf(&Skeleton::destroy)},
        {"reset", slotOf(&Skeleton::reset)},
        {"SanApiPortBindingService_init", slotOf(&Skeleton::SanApiPortBindingService_init)},
        {"copy", slotOf(&Skeleton::copy)},
        {"soap_close_socket", slotOf(&Skeleton::soap_close_socket)},
        {"soap_force_close_socket", slotOf(&Skeleton::soap_force_close_socket)},
        {"soap_senderfault", slotOf<Fault<Text, Text>>(&Skeleton::soap_senderfault)},
        {"soap_senderfault 3", slotOf<Fault<Text, Text, Text>>(&Skeleton::soap_senderfault)},
        {"soap_receiverfault", slotOf<Fault<Text, Text>>(&Skeleton::soap_receiverfault)},
        {"soap_receiverfault 3", slotOf<Fault<Text, Text, Text>>(&Skeleton::soap_receiverfault)},
        {"soap_print_fault", slotOf(&Skeleton::soap_print_fault)},
        {"soap_stream_fault", slotOf(&Skeleton::soap_stream_fault)},
        {"soap_sprint_fault", slotOf(&Skeleton::soap_sprint_fault)},
        {"soap_noheader", slotOf(&Skeleton::soap_noheader)},
        {"soap_header", slotOf(&Skeleton::soap_header)},
        {"run", slotOf(&Skeleton::run)},
        {"bind", slotOf(&Skeleton::bind)},
        {"accept", slotOf(&Skeleton::accept)},
        {"serve", slotOf(&Skeleton::serve)},
        {"dispatch", slotOf<int (Skeleton::*)()>(&Skeleton::dispatch)},
        {"AddHccToSan", slotOf(&Skeleton::AddHccToSan)},
        {"RemoveHccFromSan", slotOf(&Skeleton::RemoveHccFromSan)},
        {"AddServer", slotOf(&Skeleton::AddServer)},
        {"RemoveServer", slotOf(&Skeleton::RemoveServer)},
        {"HccAttachVolume", slotOf(&Skeleton::HccAttachVolume)},
        {"HccDetachVolume", slotOf(&Skeleton::HccDetachVolume)},
        {"MakeDataAvailable", slotOf(&Skeleton::MakeDataAvailable)},
        {"MakeDataUnavailable", slotOf(&Skeleton::MakeDataUnavailable)},
        {"FlushComplete", slotOf(&Skeleton::FlushComplete)},
        {"NewPrimaryCfmAddresses", slotOf(&Skeleton::NewPrimaryCfmAddresses)},
        {"SnapshotPrepareComplete", slotOf(&Skeleton::SnapshotPrepareComplete)},
        {"Ping", slotOf(&Skeleton::Ping)},
        {"RenameHccInSan", slotOf(&Skeleton::RenameHccInSan)},
    };
    long slot = 2;
    for (const auto& [name, actual] : expected) {
        EXPECT_EQ(actual, slot++) << name;
    }
}

TEST(Skeleton, installsTheNamespaceTableInTheAgreedOrder) {
    struct Row {
        const char* prefix;
        const char* uri;
        const char* pattern;
    };
    const std::vector<Row> expected = {
        // clang-format off
        {"SOAP-ENV", "http://schemas.xmlsoap.org/soap/envelope/", "http://www.w3.org/*/soap-envelope"},
        {"SOAP-ENC", "http://schemas.xmlsoap.org/soap/encoding/", "http://www.w3.org/*/soap-encoding"},
        {"xsi",      "http://www.w3.org/2001/XMLSchema-instance", "http://www.w3.org/*/XMLSchema-instance"},
        {"xsd",      "http://www.w3.org/2001/XMLSchema",          "http://www.w3.org/*/XMLSchema"},
        {"ns3",      "urn:san-api:version",                       nullptr},
        {"xop",      "http://www.w3.org/2004/08/xop/include",     nullptr},
        {"xmime",    "http://www.w3.org/2004/06/xmlmime",         nullptr},
        {"ns1",      "urn:san-api:service",                       nullptr},
        {nullptr,    nullptr,                                     nullptr},
        // clang-format on
    };
    const Namespace* row = namespaces;
    for (const Row& wanted : expected) {
        EXPECT_STREQ(row->id, wanted.prefix);
        EXPECT_STREQ(row->ns, wanted.uri);
        EXPECT_STREQ(row->in, wanted.pattern);
        EXPECT_EQ(row->out, nullptr);
        ++row;
    }
}

}  // namespace
