// Every served message, read from and written to the bytes that clients see. Each sample is read
// and written again: what the reader does not know is lost and what the writer does differently
// shows, so one comparison holds both to the sample.
//
// How to add a message: its sample in golden/ and its row.
#include <gtest/gtest.h>

#include "tests/apiMgmt/webservices/sanService/contract/wire.h"

namespace {

struct Row {
    const char* name;
    std::string (*rewrite)(soap*, const char* tag, const std::string& text);
};

#define MESSAGES(Name)                                                   \
    {#Name, wire::rewrite<SanApi::ns1__##Name>}, {                       \
#Name "Response", wire::rewrite < SanApi::ns1__##Name##Response> \
    }

// clang-format off
const Row MESSAGE_ROWS[] = {
    MESSAGES(AddHccToSan), MESSAGES(RemoveHccFromSan), MESSAGES(AddServer), MESSAGES(RemoveServer),
    MESSAGES(HccAttachVolume), MESSAGES(HccDetachVolume), MESSAGES(MakeDataAvailable),
    MESSAGES(MakeDataUnavailable), MESSAGES(FlushComplete), MESSAGES(NewPrimaryCfmAddresses),
    MESSAGES(SnapshotPrepareComplete), MESSAGES(Ping), MESSAGES(RenameHccInSan),
};
// clang-format on

TEST(Message, isReadAndWrittenAsItsSample) {
    for (const Row& row : MESSAGE_ROWS) {
        const std::string bytes = wire::sample(row.name);
        ASSERT_FALSE(bytes.empty()) << row.name;
        const wire::Context context = wire::newContext();
        EXPECT_EQ(row.rewrite(context.get(), (std::string("ns1:") + row.name).c_str(), bytes),
                  bytes);
    }
}

TEST(Message, withTheAttachmentIsRead) {
    const std::string text =
        "<ns1:GetPhoneHomeDataResponse xmlns:ns1=\"urn:san-api:service\">"
        "<return><xop:Include xmlns:xop=\"http://www.w3.org/2004/08/xop/include\" "
        "href=\"cid:dump\"/></return></ns1:GetPhoneHomeDataResponse>";
    const wire::Context context = wire::newContext();
    std::istringstream in(text);
    context->is = &in;
    SanApi::ns1__GetPhoneHomeDataResponse response;
    ASSERT_EQ(SanApi::soap_read_ns1__GetPhoneHomeDataResponse(context.get(), &response), SOAP_OK);
    ASSERT_NE(response.return_, nullptr);
}

}  // namespace
