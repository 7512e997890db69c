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

#define SLOT(Name) \
    { #Name, slotOf(&Skeleton::Name) }
#define SLOT_WITH(Name, ...) \
    { #Name, slotOf < int (Skeleton::*)(__VA_ARGS__)>(&Skeleton::Name) }

TEST(Skeleton, HasItsVirtualFunctionsInTheAgreedOrder) {
    using Text = const char*;
    const std::vector<std::pair<std::string, long>> expected = {
        // The two destructors take the first two slots.
        // clang-format off
        SLOT(destroy), SLOT(reset), SLOT(SanApiPortBindingService_init), SLOT(copy),
        SLOT(soap_close_socket), SLOT(soap_force_close_socket),
        SLOT_WITH(soap_senderfault, Text, Text), SLOT_WITH(soap_senderfault, Text, Text, Text),
        SLOT_WITH(soap_receiverfault, Text, Text), SLOT_WITH(soap_receiverfault, Text, Text, Text),
        SLOT(soap_print_fault), SLOT(soap_stream_fault), SLOT(soap_sprint_fault),
        SLOT(soap_noheader), SLOT(soap_header), SLOT(run), SLOT(bind), SLOT(accept), SLOT(serve),
        SLOT_WITH(dispatch),
        // The operations of the first version; later ones come behind these.
        SLOT(AddHccToSan), SLOT(RemoveHccFromSan), SLOT(AddServer), SLOT(RemoveServer),
        SLOT(HccAttachVolume), SLOT(HccDetachVolume), SLOT(MakeDataAvailable),
        SLOT(MakeDataUnavailable), SLOT(FlushComplete), SLOT(NewPrimaryCfmAddresses),
        SLOT(SnapshotPrepareComplete), SLOT(Ping), SLOT(RenameHccInSan),
        // clang-format on
    };
    long slot = 2;
    for (const auto& [name, actual] : expected) {
        EXPECT_EQ(actual, slot++) << name;
    }
}

}  // namespace
