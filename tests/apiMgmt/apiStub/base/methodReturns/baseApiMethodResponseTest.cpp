#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "apiMgmt/apiStub/base/methodReturns/baseApiMethodReturn.h"
#include "apiMgmt/proto/apiMgrMsg.pb.h"
#include "tests/apiMgmt/apiStub/base/methodReturns/returnText.h"
#include "tests/apiMgmt/apiStub/base/testClasses.h"

namespace {

using protoIPCMsg::GPBIPCMsg;

std::string outcomeOf(const GPBIPCMsg& reply) {
    const std::unique_ptr<BASEApiMethodReturn> outcome(APIThingSetMethod().ProcessResponse(reply));
    return returnText(*outcome);
}

GPBIPCMsg replyWith(const std::string& document) {
    GPBIPCMsg reply;
    reply.set_msgtype(protoIPCMsg::IPC_API_RESPONSE);
    reply.mutable_apirespmsg()->set_cmdtype(protoIPCMsg::API_COMMAND);
    reply.mutable_apirespmsg()->mutable_cmdrespmsg()->set_responsedocument(document);
    return reply;
}

TEST(ReplyMessageTest, IsRefusedUnlessItIsAReplyToACommand) {
    const std::string type =
        "failed 4|Invalid content in response message|Invalid content in response message|"
        "Message type invalid or missing from response";
    const std::string command =
        "failed 4|Invalid content in response message|Invalid content in response message|"
        "Command type invalid or missing from response";
    GPBIPCMsg reply = replyWith("<compapi/>");
    reply.set_msgtype(protoIPCMsg::IPC_API_REQUEST);
    EXPECT_EQ(outcomeOf(reply), type);
    reply.clear_msgtype();
    EXPECT_EQ(outcomeOf(reply), type);
    reply = replyWith("<compapi/>");
    reply.clear_apirespmsg();
    EXPECT_EQ(outcomeOf(reply), type);
    reply = replyWith("<compapi/>");
    reply.mutable_apirespmsg()->clear_cmdtype();
    EXPECT_EQ(outcomeOf(reply), command);
    reply = replyWith("<compapi/>");
    reply.mutable_apirespmsg()->clear_cmdrespmsg();
    EXPECT_EQ(outcomeOf(reply), command);
    // A number that no enumeration has counts as missing.
    ASSERT_TRUE(reply.ParseFromString(std::string("\x08\x09\x22\x04\x08\x01\x12\x00", 8)));
    EXPECT_EQ(outcomeOf(reply), type);
}

struct Document {
    std::string text;
    const char* outcome;
};

class ReplyDocumentTest : public testing::TestWithParam<Document> {};

TEST_P(ReplyDocumentTest, GivesOneReturn) {
    EXPECT_EQ(outcomeOf(replyWith(GetParam().text)), GetParam().outcome) << GetParam().text;
}

std::string reply(const std::string& inner) {
    return "<compapi><ApiMethodReturn>" + inner + "</ApiMethodReturn></compapi>";
}

std::string success(const std::string& value) {
    return reply("<Successful>True</Successful>" + value);
}

std::string failure(const std::string& inner) {
    return reply("<Successful>False</Successful>" + inner);
}

constexpr const char* notParsed =
    "failed 4|Invalid content in response message|Invalid content in response message|"
    "Failed to parse XML response data";
#define COUNT(n)                                                              \
    "failed 4|Invalid response in return XML|Invalid response in return XML|" \
    "Incorrect number of APIMethodReturn elements.  Expected 1, found [" n "]."

// clang-format off
INSTANTIATE_TEST_SUITE_P(Malformed, ReplyDocumentTest, testing::Values(
    Document{"",                                                       notParsed},
    Document{"<compapi>",                                              notParsed},
    Document{"<!DOCTYPE compapi>" + success("<ReturnInt>1</ReturnInt>"), notParsed},
    Document{"<compapi/>",                                             COUNT("0")},
    Document{"<compapi><ApiMethodReturn/><ApiMethodReturn/></compapi>", COUNT("2")},
    Document{"<compapi><a><ApiMethodReturn/></a></compapi>",           COUNT("0")},
    Document{"<other><ApiMethodReturn><Successful>1</Successful></ApiMethodReturn></other>", COUNT("1")},
    Document{success(""),                                              COUNT("1")},
    Document{success("<ReturnNothing/>"),                              COUNT("1")}
));

INSTANTIATE_TEST_SUITE_P(Failed, ReplyDocumentTest, testing::Values(
    Document{reply(""),                                                "failed 0|||"},
    Document{failure("<ErrorCode>8</ErrorCode>"),                      "failed 8|||"},
    Document{failure("<ErrorCode> 8</ErrorCode>"),                     "failed 8|||"},
    Document{failure("<ErrorCode>iNVALIDvALUE</ErrorCode>"),           "failed 25|||"},
    Document{failure("<ErrorCode>77</ErrorCode>"),                     "failed 77|||"},
    Document{failure("<ErrorCode>-3</ErrorCode>"),                     "failed -3|||"},
    Document{failure("<ErrorCode>99999999999999999999</ErrorCode>"),   "failed 2147483647|||"},
    Document{failure("<ErrorCode>no such name</ErrorCode>"),           "failed 0|||"},
    Document{failure("<ErrorCode>8</ErrorCode><Error>a &lt; b</Error><LocalizedError>l</LocalizedError>"
                     "<ErrorDetail>%s|&#x0a;</ErrorDetail><ReturnBool>True</ReturnBool>"),
             "failed 8|a < b|l|%s|\n"},
    Document{reply("<Successful>yes</Successful><Error>e</Error>"),    "failed 0|e||"}
));

INSTANTIATE_TEST_SUITE_P(Successful, ReplyDocumentTest, testing::Values(
    Document{reply("<Successful>1</Successful><ReturnBool>tRUE</ReturnBool>"), "bool True"},
    Document{success("<ReturnBool>no</ReturnBool>"),                   "bool False"},
    Document{success("<ReturnInt>5</ReturnInt><ReturnBool>True</ReturnBool>"), "bool True"},
    Document{success("<ReturnInt>-12</ReturnInt>"),                    "int -12"},
    Document{success("<ReturnInt>4294967296</ReturnInt>"),             "int 2147483647"},
    Document{success("<ReturnInt>x</ReturnInt>"),                      "int 0"},
    Document{success("<ReturnString>a &amp;&lt;</ReturnString>"),      "string a &<"},
    Document{success("<ReturnString/>"),                               "string "},
    Document{success("<ReturnEnum>Up</ReturnEnum>"),                   "enum Up"},
    Document{success("<ReturnEnum>Up</ReturnEnum><ReturnEnumMask>A B</ReturnEnumMask>"), "mask A B"},
    Document{success("<ReturnObject><Thing><Name>n</Name></Thing></ReturnObject>"), "objects Thing{Name=n}"},
    Document{success("<ReturnObject><Thing/><Thing><Name>second</Name></Thing></ReturnObject>"), "objects Thing{}"},
    Document{success("<ReturnObjectArray>\n <Thing><Name>n</Name></Thing> <Unknown/>\n <Other><Size>3</Size></Other></ReturnObjectArray>"),
             "objects[] Thing{Name=n} Other{Size=3}"},
    Document{success("<ReturnObjectArray><Thing><Header>Notes,Name</Header><Data>a--cm--b,c--nl--d\n,&lt;--cl--\n</Data></Thing></ReturnObjectArray>"),
             "objects[] Thing{Name=c\nd;Notes=a,b} Thing{Name=<:}"},
    Document{success("<ReturnObject/>"),                               "objects"},
    Document{success("<ReturnMethodObject><Unknown/><Record><Label>t</Label><More>m</More></Record></ReturnMethodObject>"),
             "records Record{Label=t;More=m}"},
    Document{success("<ReturnMethodObjectArray><Record><Inner><Inner><Deep>&amp;</Deep></Inner></Inner></Record><Record/></ReturnMethodObjectArray>"),
             "records[] Record{Inner=<Inner><Deep>&amp;</Deep></Inner>} Record{}"},
    Document{"<compapi><ApiMethodReturn><Successful>True</Successful></ApiMethodReturn><ReturnInt>7</ReturnInt></compapi>", "int 7"}
));
// clang-format on

}  // namespace
