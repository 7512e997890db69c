#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "apiMgmt/apiStub/base/methodReturns/baseApiMethodReturn.h"
#include "tests/apiMgmt/apiStub/base/methodReturns/returnText.h"
#include "tests/apiMgmt/apiStub/base/testClasses.h"
#include "tests/support/replyMessage.h"

namespace {

using protoIPCMsg::GPBIPCMsg;

std::string outcomeOf(const GPBIPCMsg& reply) {
    const std::unique_ptr<BASEApiMethodReturn> outcome(APIThingSetMethod().ProcessResponse(reply));
    return returnText(*outcome);
}

TEST(ReplyMessageTest, IsRefusedUnlessItIsAReplyToACommand) {
    const std::string refused =
        "failed 4|Invalid content in response message|Invalid content in response message|";
    const std::string type = refused + "Message type invalid or missing from response";
    const std::string command = refused + "Command type invalid or missing from response";
    const std::pair<void (*)(GPBIPCMsg&), std::string> changes[] = {
        // clang-format off
        {[](GPBIPCMsg& reply) { reply.set_msgtype(protoIPCMsg::IPC_API_REQUEST); },   type},
        {[](GPBIPCMsg& reply) { reply.clear_msgtype(); },                             type},
        {[](GPBIPCMsg& reply) { reply.clear_apirespmsg(); },                          type},
        {[](GPBIPCMsg& reply) { reply.mutable_apirespmsg()->clear_cmdtype(); },       command},
        {[](GPBIPCMsg& reply) { reply.mutable_apirespmsg()->clear_cmdrespmsg(); },    command},
        // clang-format on
    };
    GPBIPCMsg reply;
    for (const auto& [change, outcome] : changes) {
        reply = replyWith("<compapi/>");
        change(reply);
        EXPECT_EQ(outcomeOf(reply), outcome);
    }
    // A number that no enumeration has counts as missing.
    ASSERT_TRUE(reply.ParseFromString(std::string("\x08\x09\x22\x04\x08\x01\x12\x00", 8)));
    EXPECT_EQ(outcomeOf(reply), type);
}

struct Document {
    std::string text;
    const char* outcome;
};

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
const Document documents[] = {
    // malformed
    {"",                                                       notParsed},
    {"<compapi>",                                              notParsed},
    {"<!DOCTYPE compapi>" + success("<ReturnInt>1</ReturnInt>"), notParsed},
    {"<compapi/>",                                             COUNT("0")},
    {"<compapi><ApiMethodReturn/><ApiMethodReturn/></compapi>", COUNT("2")},
    {"<compapi><a><ApiMethodReturn/></a></compapi>",           COUNT("0")},
    {"<other><ApiMethodReturn><Successful>1</Successful></ApiMethodReturn></other>", COUNT("1")},
    {success(""),                                              COUNT("1")},
    {success("<ReturnNothing/>"),                              COUNT("1")},
    // failed
    {reply(""),                                                "failed 0|||"},
    {failure("<ErrorCode>8</ErrorCode>"),                      "failed 8|||"},
    {failure("<ErrorCode> 8</ErrorCode>"),                     "failed 8|||"},
    {failure("<ErrorCode>iNVALIDvALUE</ErrorCode>"),           "failed 25|||"},
    {failure("<ErrorCode>77</ErrorCode>"),                     "failed 77|||"},
    {failure("<ErrorCode>-3</ErrorCode>"),                     "failed -3|||"},
    {failure("<ErrorCode>99999999999999999999</ErrorCode>"),   "failed 2147483647|||"},
    {failure("<ErrorCode>no such name</ErrorCode>"),           "failed 0|||"},
    {failure("<ErrorCode>8</ErrorCode><Error>a &lt; b</Error><LocalizedError>l</LocalizedError>"
                     "<ErrorDetail>%s|&#x0a;</ErrorDetail><ReturnBool>True</ReturnBool>"),
             "failed 8|a < b|l|%s|\n"},
    {reply("<Successful>yes</Successful><Error>e</Error>"),    "failed 0|e||"},
    // successful
    {reply("<Successful>1</Successful><ReturnBool>tRUE</ReturnBool>"), "bool True"},
    {success("<ReturnBool>no</ReturnBool>"),                   "bool False"},
    {success("<ReturnInt>5</ReturnInt><ReturnBool>True</ReturnBool>"), "bool True"},
    {success("<ReturnInt>-12</ReturnInt>"),                    "int -12"},
    {success("<ReturnInt>4294967296</ReturnInt>"),             "int 2147483647"},
    {success("<ReturnInt>x</ReturnInt>"),                      "int 0"},
    {success("<ReturnString>a &amp;&lt;</ReturnString>"),      "string a &<"},
    {success("<ReturnString/>"),                               "string "},
    {success("<ReturnEnum>Up</ReturnEnum>"),                   "enum Up"},
    {success("<ReturnEnum>Up</ReturnEnum><ReturnEnumMask>A B</ReturnEnumMask>"), "mask A B"},
    {success("<ReturnObject><Thing><Name>n</Name></Thing></ReturnObject>"), "objects Thing{Name=n}"},
    {success("<ReturnObject><Thing/><Thing><Name>second</Name></Thing></ReturnObject>"), "objects Thing{}"},
    {success("<ReturnObjectArray>\n <Thing><Name>n</Name></Thing> <Unknown/>\n <Other><Size>3</Size></Other></ReturnObjectArray>"),
             "objects[] Thing{Name=n} Other{Size=3}"},
    {success("<ReturnObjectArray><Thing><Header>Notes,Name</Header><Data>a--cm--b,c--nl--d\n,&lt;--cl--\n</Data></Thing></ReturnObjectArray>"),
             "objects[] Thing{Name=c\nd;Notes=a,b} Thing{Name=<:}"},
    {success("<ReturnObject/>"),                               "objects"},
    {success("<ReturnMethodObject><Unknown/><Record><Label>t</Label><More>m</More></Record></ReturnMethodObject>"),
             "records Record{Label=t;More=m}"},
    {success("<ReturnMethodObjectArray><Record><Inner><Inner><Deep>&amp;</Deep></Inner></Inner></Record><Record/></ReturnMethodObjectArray>"),
             "records[] Record{Inner=<Inner><Deep>&amp;</Deep></Inner>} Record{}"},
    {"<compapi><ApiMethodReturn><Successful>True</Successful></ApiMethodReturn><ReturnInt>7</ReturnInt></compapi>", "int 7"},
};
// clang-format on

TEST(ReplyDocumentTest, GivesOneReturn) {
    for (const Document& document : documents)
        EXPECT_EQ(outcomeOf(replyWith(document.text)), document.outcome) << document.text;
}

}  // namespace
