// Whole exchanges with the skeleton: how it picks the operation and what it answers when it does
// not get that far.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/apiMgmt/webservices/sanService/contract/wire.h"

namespace {

using testing::HasSubstr;
using wire::envelope;

// A service whose every operation notes its name, leaves the response empty, and refuses what has
// no request.
class Service : public SanApi::SanApiPortBindingService {
public:
    explicit Service(const soap& context) : SanApiPortBindingService(context) {
        SanApiPortBindingService_init(SOAP_C_UTFSTRING, SOAP_C_UTFSTRING);
    }
    Service* copy() override { return nullptr; }

#define OPERATION(Name)                                                                     \
    int Name(SanApi::ns1__##Name* request, SanApi::ns1__##Name##Response*) override {       \
        called = #Name;                                                                     \
        return request ? SOAP_OK : soap_senderfault("no request for " #Name " <here>", ""); \
    }
    // clang-format off
    OPERATION(AddHccToSan) OPERATION(RemoveHccFromSan) OPERATION(AddServer)
    OPERATION(RemoveServer) OPERATION(HccAttachVolume) OPERATION(HccDetachVolume)
    OPERATION(MakeDataAvailable) OPERATION(MakeDataUnavailable) OPERATION(FlushComplete)
    OPERATION(NewPrimaryCfmAddresses) OPERATION(SnapshotPrepareComplete) OPERATION(Ping)
    OPERATION(RenameHccInSan)
    // clang-format on
#undef OPERATION

                        std::string called;
};

struct Exchange {
    std::string called;
    std::string reply;
};

Exchange exchange(const std::string& request) {
    const wire::Context context = wire::newContext();
    Service service(*context);
    const std::string reply = wire::answer(service, request, [&] {
        service.serve();
        service.destroy();
    });
    return {service.called, reply.substr(reply.find("<?xml"))};
}

struct Row {
    const char* what;
    std::string request;
    const char* called;
    const char* inReply;
};

const Row ODD_ROWS[] = {
    // clang-format off
    {"another prefix",           envelope("<s:Ping/>"),                       "Ping", "PingResponse><return xsi:nil=\"true\"/>"},
    {"children of no meaning",   envelope("<s:Ping><a><b>c</b></a></s:Ping>"), "Ping", "PingResponse"},
    {"SOAP 1.2",                 envelope("<s:Ping/>", "", "http://www.w3.org/2003/05/soap-envelope"),
                                                                              "Ping", "http://www.w3.org/2003/05/soap-envelope"},
    {"a null attach reply",      envelope("<s:HccAttachVolume/>"),            "HccAttachVolume", "<aliasScsiInfo xsi:nil=\"true\"/>"},
    {"a nil wrapper",            envelope("<s:Ping xsi:nil=\"true\"/>"),      "Ping", "no request for Ping &lt;here&gt;"},
    {"an operation not served",  envelope("<s:GetHcns/>"),                    "", "Method 's:GetHcns' not implemented"},
    {"bytes that are no text",   envelope("<s:Get\xFF" "Hcns/>"),              "", "Method 's:GetHcns' not implemented"},
    {"another namespace",        envelope("<Ping xmlns=\"urn:other\"/>"),     "", "not implemented"},
    {"a type error",             envelope("<s:NewPrimaryCfmAddresses><mgmtIpAddresses><port>x</port></mgmtIpAddresses>"
                                          "</s:NewPrimaryCfmAddresses>"),     "", "<faultcode>SOAP-ENV:Client</faultcode>"},
    {"an envelope cut short",    envelope("<s:Ping/>").substr(0, 150),        "", "<faultcode>SOAP-ENV:Client</faultcode>"},
    // clang-format on
};

TEST(Dispatch, answersOddRequests) {
    for (const Row& row : ODD_ROWS) {
        const Exchange done = exchange(row.request);
        EXPECT_EQ(done.called, row.called) << row.what;
        EXPECT_THAT(done.reply, HasSubstr(row.inReply)) << row.what;
    }
}

TEST(Dispatch, writesAFaultAsItsSample) {
    const Exchange done = exchange(envelope("<s:Ping xsi:nil=\"true\"/>"));
    EXPECT_EQ(wire::joined(done.reply), wire::sample("Fault"));
}

}  // namespace
