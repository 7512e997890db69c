// What a reply becomes, and what a return writes.
#include <gtest/gtest.h>

#include <memory>
#include <sstream>
#include <string>

#include "apiMgmt/apiStub/base/methodReturns/boolMethodReturn.h"
#include "apiMgmt/apiStub/base/methodReturns/enumMaskMethodReturn.h"
#include "apiMgmt/apiStub/base/methodReturns/intMethodReturn.h"
#include "apiMgmt/apiStub/base/methodReturns/methodObjectMethodReturn.h"
#include "apiMgmt/apiStub/base/methodReturns/stringMethodReturn.h"
#include "testbed/sampleClasses.h"
#include "tests/support/replyMessage.h"

namespace {

using protoIPCMsg::GPBIPCMsg;
using ReturnPtr = std::unique_ptr<BASEApiMethodReturn>;

ReturnPtr process(const GPBIPCMsg& reply) {
    return ReturnPtr(APISample::APISampleAddMethod().ProcessResponse(reply));
}

/// A return's value as it is written, or "failed STATE|error|localized error|detail".
std::string outcomeOf(const BASEApiMethodReturn& outcome) {
    if (outcome.GetSuccessful()) {
        return outcome.GetReturnString(ObjectReturnEncodeEnum::Xml);
    }
    return "failed " + std::to_string(static_cast<int>(outcome.GetErrorCode())) + "|" +
           outcome.GetError() + "|" + outcome.GetLocalizedError() + "|" + outcome.GetErrorDetail();
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
        EXPECT_EQ(outcomeOf(*process(reply)), outcome);
    }
    // A number that no enumeration has counts as missing.
    ASSERT_TRUE(reply.ParseFromString(std::string("\x08\x09\x22\x04\x08\x01\x12\x00", 8)));
    EXPECT_EQ(outcomeOf(*process(reply)), type);
}

std::string reply(const std::string& inner) {
    return "<compapi><ApiMethodReturn>" + inner + "</ApiMethodReturn></compapi>";
}

std::string success(const std::string& value) {
    return reply("<Successful>True</Successful>" + value);
}

constexpr char kNotParsed[] =
    "failed 4|Invalid content in response message|Invalid content in response message|"
    "Failed to parse XML response data";
#define COUNT(n)                                                              \
    "failed 4|Invalid response in return XML|Invalid response in return XML|" \
    "Incorrect number of APIMethodReturn elements.  Expected 1, found [" n "]."

// clang-format off
const std::pair<std::string, std::string> kDocuments[] = {
    // malformed
    {"",                                                       kNotParsed},
    {"<compapi>",                                              kNotParsed},
    {"<!DOCTYPE compapi>" + success("<ReturnInt>1</ReturnInt>"), kNotParsed},
    {"<compapi/>",                                             COUNT("0")},
    {"<compapi><ApiMethodReturn/><ApiMethodReturn/></compapi>", COUNT("2")},
    {"<compapi><a><ApiMethodReturn/></a></compapi>",           COUNT("0")},
    {"<other><ApiMethodReturn><Successful>1</Successful></ApiMethodReturn></other>", COUNT("1")},
    {success(""),                                              COUNT("1")},
    {success("<ReturnNothing/>"),                              COUNT("1")},
    // failed
    {reply(""),                                                "failed 0|||"},
    {reply("<ErrorCode> 8</ErrorCode>"),                       "failed 8|||"},
    {reply("<ErrorCode>iNVALIDvALUE</ErrorCode>"),             "failed 25|||"},
    {reply("<ErrorCode>77</ErrorCode>"),                       "failed 77|||"},
    {reply("<ErrorCode>-3</ErrorCode>"),                       "failed -3|||"},
    {reply("<ErrorCode>99999999999999999999</ErrorCode>"),     "failed 2147483647|||"},
    {reply("<ErrorCode>no such name</ErrorCode>"),             "failed 0|||"},
    {reply("<Successful>False</Successful><ErrorCode>8</ErrorCode><Error>a &lt; b</Error>"
           "<LocalizedError>l</LocalizedError><ErrorDetail>%s|&#x0a;</ErrorDetail><ReturnBool>True</ReturnBool>"),
             "failed 8|a < b|l|%s|\n"},
    {reply("<Successful>yes</Successful><Error>e</Error>"),    "failed 0|e||"},
    // successful, but not written as they were
    {reply("<Successful>1</Successful><ReturnBool>tRUE</ReturnBool>"), "<ReturnBool>True</ReturnBool>"},
    {success("<ReturnBool>no</ReturnBool>"),                   "<ReturnBool>False</ReturnBool>"},
    {success("<ReturnInt>4294967296</ReturnInt>"),             "<ReturnInt>2147483647</ReturnInt>"},
    {success("<ReturnInt>x</ReturnInt>"),                      "<ReturnInt>0</ReturnInt>"},
    {success("<ReturnString>'\"></ReturnString>"),             "<ReturnString>&apos;&quot;&gt;</ReturnString>"},
    {success("<ReturnObject><Thing/><Thing><Name>second</Name></Thing></ReturnObject>"),
             "<ReturnObject><Thing></Thing></ReturnObject>"},
    {success("<ReturnObjectArray>\n <Thing><Name>n</Name></Thing> <Unknown/>\n"
             " <Sample><Number>3</Number></Sample></ReturnObjectArray>"),
             "<ReturnObjectArray><Thing><Name>n</Name></Thing><Sample><Number>3</Number></Sample></ReturnObjectArray>"},
    {success("<ReturnObjectArray><Thing><Header>Notes,Name</Header>"
             "<Data>a--cm--b,c--nl--d\n,&lt;--cl--\n</Data></Thing></ReturnObjectArray>"),
             "<ReturnObjectArray><Thing><Name>c&#x0a;d</Name><Notes>a,b</Notes></Thing>"
             "<Thing><Name>&lt;:</Name></Thing></ReturnObjectArray>"},
    // As many fields as may be, and one more.
    {success("<ReturnObject><Thing><Header>Name</Header><Data>a" + std::string(999'998, '\n') + "</Data></Thing></ReturnObject>"),
             "<ReturnObject><Thing><Name>a</Name></Thing></ReturnObject>"},
    {success("<ReturnObject><Thing><Header>Name</Header><Data>a" + std::string(999'999, '\n') + "</Data></Thing></ReturnObject>"),
             COUNT("1")},
    {success("<ReturnObject><Thing><Header>Name</Header><Data>a\nb\n</Data></Thing></ReturnObject>"),
             "<ReturnObject><Thing><Name>a</Name></Thing></ReturnObject>"},
    {success("<ReturnMethodObject><Unknown/><SampleRecord><Port>1</Port></SampleRecord></ReturnMethodObject>"),
             "<ReturnMethodObject><SampleRecord><Port>1</Port></SampleRecord></ReturnMethodObject>"},
    {"<compapi><ApiMethodReturn><Successful>True</Successful></ApiMethodReturn><ReturnInt>7</ReturnInt></compapi>",
             "<ReturnInt>7</ReturnInt>"},
    {"<compapi><ReturnBool>True</ReturnBool>" + reply("<Successful>True</Successful><ReturnInt>7</ReturnInt>").substr(9),
             "<ReturnInt>7</ReturnInt>"},
};

// Values that are written as they were read.
const std::string kValues[] = {
    "<ReturnBool>True</ReturnBool>",
    "<ReturnInt>-2147483648</ReturnInt>",
    "<ReturnString>a&lt;&amp;&apos;&quot;&#x0a; </ReturnString>",
    "<ReturnString></ReturnString>",
    "<ReturnEnum>U&amp;p&lt;</ReturnEnum>",
    "<ReturnEnumMask>A &lt;B&apos;</ReturnEnumMask>",
    "<ReturnMethodObject />",
    "<ReturnMethodObjectArray />",
    "<ReturnMethodObject><SampleRecord><Comment>a&lt;b</Comment></SampleRecord></ReturnMethodObject>",
    "<ReturnMethodObjectArray><SampleRecord><Comment>a</Comment></SampleRecord>"
        "<SampleRecord><Comment></Comment></SampleRecord></ReturnMethodObjectArray>",
    "<ReturnObject></ReturnObject>",
    "<ReturnObject><Thing><Name>n</Name></Thing></ReturnObject>",
    "<ReturnObjectArray></ReturnObjectArray>",
    "<ReturnObjectArray><Thing><Name>a,b:c</Name><Notes>&lt;&amp;&gt;&#x0a;x</Notes></Thing>"
        "<Thing><Name>n</Name><Notes>o</Notes></Thing><Sample><Number>3</Number></Sample>"
        "<Thing><Name>z</Name><Notes>y</Notes></Thing></ReturnObjectArray>",
    "<ReturnObjectArray><Thing><Name>n</Name></Thing><Thing><Notes>o</Notes></Thing></ReturnObjectArray>",
};
// clang-format on

TEST(ReplyDocumentTest, GivesOneReturn) {
    for (const auto& [document, outcome] : kDocuments) {
        EXPECT_EQ(outcomeOf(*process(replyWith(document))), outcome) << document;
    }
}

TEST(ReplyDocumentTest, ValueIsTheFirstKindThatIsThere) {
    const std::string kinds[] = {"ReturnBool",
                                 "ReturnInt",
                                 "ReturnString",
                                 "ReturnObject",
                                 "ReturnObjectArray",
                                 "ReturnMethodObject",
                                 "ReturnMethodObjectArray",
                                 "ReturnEnumMask",
                                 "ReturnEnum"};
    std::string present;
    for (auto kind = std::rbegin(kinds); kind != std::rend(kinds); ++kind) {
        present.append("<").append(*kind).append(">1</").append(*kind).append(">");
        const std::string outcome = outcomeOf(*process(replyWith(success(present))));
        EXPECT_EQ(outcome.substr(1, outcome.find_first_of("> ") - 1), *kind);
    }
}

TEST(ReplyDocumentTest, IsWhatAReturnWritesInEachEncoding) {
    for (const std::string& value : kValues) {
        const ReturnPtr made = process(replyWith(success(value)));
        EXPECT_EQ(outcomeOf(*made), value);
        for (const auto& row : gObjectReturnEncodeEnumIdStrList.GetRows()) {
            const std::string document = made->ToString(row.id);
            const ReturnPtr read = process(replyWith(document));
            EXPECT_EQ(read->ToString(row.id), document);
            EXPECT_EQ(outcomeOf(*read), value) << document;
        }
    }
}

TEST(MethodReturnTest, WritesCommaSeparatedSections) {
    const ReturnPtr made = process(replyWith(
        success("<ReturnObjectArray><Thing><Name>a,b</Name></Thing><Thing><Name>c:&#x09;d</Name>"
                "<Notes>&amp;</Notes></Thing><Sample><Number>3</Number></Sample>"
                "</ReturnObjectArray>")));
    EXPECT_EQ(made->GetReturnString(ObjectReturnEncodeEnum::Csv),
              "<ReturnObjectArray>"
              "<Thing><Header>Name,Notes</Header><Data>a--cm--b,\nc--cl----nl--d,&amp;\n</Data>"
              "</Thing><Sample><Header>Number</Header><Data>3\n</Data></Sample>"
              "</ReturnObjectArray>");
    EXPECT_EQ(made->GetReturnString(ObjectReturnEncodeEnum::CsvData),
              "<ReturnObjectArray><Thing><Data>a--cm--b,,,,\nc--cl----nl--d,&amp;,,,\n</Data>"
              "</Thing><Sample><Data>,3,,,,,,,,,,,,,,,,,,,\n</Data></Sample></ReturnObjectArray>");
}

TEST(MethodReturnTest, WritesStatusBeforeValue) {
    EXPECT_EQ(BASEApiMethodReturn(false, ErrorStateEnum::InvalidRequest, "e<", "l", "d")
                  .ToString(ObjectReturnEncodeEnum::Csv),
              "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<compapi><ApiMethodReturn>"
              "<Error>e&lt;</Error><ErrorCode>InvalidRequest</ErrorCode>"
              "<ErrorDetail>d</ErrorDetail><LocalizedError>l</LocalizedError>"
              "<ReturnObjectEncode>Csv</ReturnObjectEncode><Successful>False</Successful>"
              "</ApiMethodReturn></compapi>");
    STRINGMethodReturn failed("text", false, ErrorStateEnum::InvalidValue, "e", "l", "d", nullptr);
    EXPECT_EQ(outcomeOf(*process(replyWith(failed.ToString(ObjectReturnEncodeEnum::Xml)))),
              "failed 25|e|l|d");
}

TEST(MethodReturnTest, SucceedsAsItsKindSays) {
    EXPECT_TRUE(BOOLMethodReturn(false, false, nullptr).GetSuccessful());
    EXPECT_FALSE(INTMethodReturn(1, false, nullptr).GetSuccessful());
    EXPECT_EQ(outcomeOf(BASEApiMethodReturn(false)), "failed 1|||");
    EXPECT_TRUE(BASEApiMethodReturn().GetSuccessful());
}

/// Counts its instances, to show who deletes what.
class CountedRecord : public APISampleRecord {
public:
    CountedRecord() { ++alive; }
    ~CountedRecord() override { --alive; }
    static inline int alive = 0;
};

// The analyzer does not see that a return deletes what it holds.
// NOLINTBEGIN(clang-analyzer-cplusplus.NewDeleteLeaks)
TEST(ObjectListTest, SingleReturnKeepsItsFirstObject) {
    auto second = std::make_unique<CountedRecord>();
    {
        METHODObjectMethodReturn single(false);
        EXPECT_EQ(single.GetObject(), nullptr);
        auto* first = new CountedRecord();
        single.SetReturnObject(first, false);
        single.SetReturnObject(second.get(), false);
        EXPECT_EQ(single.GetObjects(), std::vector<BASEApiMethodObject*>{first});
        single.SetReturnObject(second.release(), true);
        EXPECT_EQ(CountedRecord::alive, 1);
        single.SetReturnObject(single.GetObject(), true);  // in place of itself
        EXPECT_EQ(CountedRecord::alive, 1);
        single.SetReturnObject(nullptr, true);
        EXPECT_EQ(CountedRecord::alive, 0);
        single.SetReturnObject(new CountedRecord(), false);
    }
    EXPECT_EQ(CountedRecord::alive, 0);
}

TEST(ObjectListTest, ArrayReturnOwnsItsList) {
    CountedRecord kept;
    {
        METHODObjectMethodReturn array(true);
        array.SetReturnObject(new CountedRecord(), false);
        array.SetReturnObject(new CountedRecord(), false);
        EXPECT_EQ(array.GetObject(), nullptr);
        // One of the objects held so far stays, the other goes.
        array.SetReturnObject({nullptr, array.GetObjects()[1], new CountedRecord(), nullptr});
        EXPECT_EQ(array.GetObjects().size(), 2U);
        EXPECT_EQ(CountedRecord::alive, 3);
        array.CleanUpApiObjects();
        EXPECT_TRUE(array.GetObjects().empty());
        EXPECT_EQ(CountedRecord::alive, 1);
        array.SetOwnsObjects(false);
        array.SetReturnObject(&kept, false);
    }
    EXPECT_EQ(CountedRecord::alive, 1);
}

// NOLINTEND(clang-analyzer-cplusplus.NewDeleteLeaks)

TEST(MethodReturnTest, PrintsForAPerson) {
    APISample::APISampleAddMethod method;
    std::ostringstream text;
    text << BASEApiMethodReturn(true, &method)
         << BASEApiMethodReturn(false, ErrorStateEnum::InvalidRequest, "bad", "", "");
    EXPECT_EQ(text.str(),
              "success=1\nmethod name=Add\nobject name=Sample\n"
              "success=0\nerror code=8\nerror message=bad\n");
}

TEST(EnumMaskTest, SplitsAtAnyWhiteSpace) {
    using Names = std::vector<std::string>;
    EXPECT_EQ(ENUMMaskMethodReturn::GetEnumList(" \n A \t\tB "), (Names{"A", "B"}));
    EXPECT_EQ(ENUMMaskMethodReturn::GetEnumList(" "), Names());
}

}  // namespace
