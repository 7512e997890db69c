// The attribute side of methods and associations: store, checks, request element.
#include <gmock/gmock.h>

#include "tests/apiMgmt/apiStub/base/errorOf.h"
#include "tests/apiMgmt/apiStub/base/sampleClasses.h"

namespace {

using Add = APISample::APISampleAddMethod;
using Parts = APISample::APISamplePartsAssociation;

std::string messageOf(const std::function<void()>& call) {
    return errorOf(call).what();
}

TEST(MethodElement, WritesAllStoredValuesInByteOrder) {
    Add method({{"b", "1"}, {"", "nameless"}, {"B", ""}, {"a", "<raw/>"}});
    method.SetHidden(true);
    EXPECT_EQ(method.GetXMLString(true, false),
              "<ApiMethod><CommandType>Method</CommandType><Object>Sample</Object>"
              "<Command>Add</Command><Async>true</Async><ObjectEncodeType>csv</ObjectEncodeType>"
              "<Attributes><B></B><a><raw/></a><b>1</b></Attributes></ApiMethod>");
    EXPECT_EQ(Add().GetXMLString(false, true),
              "<ApiMethod><CommandType>Method</CommandType><Object>Sample</Object>"
              "<Command>Add</Command><Async>false</Async><ObjectEncodeType>xml</ObjectEncodeType>"
              "</ApiMethod>");
    EXPECT_EQ(Parts("1.2").GetXMLString(false, true),
              "<ApiMethod><CommandType>Association</CommandType><Object>Sample</Object>"
              "<Command>Parts</Command><Async>false</Async>"
              "<ObjectEncodeType>xml</ObjectEncodeType><Attributes><InstanceId>1.2</InstanceId>"
              "</Attributes></ApiMethod>");
}

TEST(MethodValues, TypedTextIsEscapedAndRawTextIsNot) {
    const std::string hostile = "</Name><Key>&amp;\"'%s";
    Add method;
    method.SetName(hostile);
    EXPECT_EQ(method.GetStringDirect("Name"), "&lt;/Name&gt;&lt;Key&gt;&amp;amp;&quot;&apos;%s");
    EXPECT_EQ(method.GetName(), hostile);
    method.PutStringDirect("Name", "&lt;");
    EXPECT_EQ(method.GetXMLString(false, true).find("&amp;lt;"), std::string::npos);
}

TEST(MethodChecks, RequiredAttributes) {
    Add method;
    const auto either = [&] { return messageOf([&] { method.ValidateRequiredOrAttributes(); }); };
    EXPECT_EQ(either(), "Required attribute Host, System not set");
    method.SetSystem("");  // empty is set
    EXPECT_EQ(either(), "");
    method.SetId("");
    method.SetName("n");  // one that is required, but neither listed nor written
    EXPECT_EQ(messageOf([&] { method.ValidateRequiredAttributes(); }),
              "Required attribute Hidden not set");
}

TEST(MethodChecks, ValuesAreJudgedAsTheCallerGaveThem) {
    Add method;
    method.ValidateAttributes();
    method.SetName("<");  // one character, though it is stored as four
    method.SetLiteObjectRequest();
    method.ValidateAttributes();
    method.SetCount(-1);
    EXPECT_THAT(messageOf([&] { method.ValidateAttributes(); }),
                testing::StartsWith("Attribute \"Count\" was -1"));
    method.SetName("");
    EXPECT_THAT(messageOf([&] { method.ValidateAttributes(); }),
                testing::StartsWith("Attribute \"Name\" was \"\""));
}

TEST(MethodFacts, OfLiteRequestsAssociationsAndLists) {
    EXPECT_TRUE(Parts().GetAttributeList().empty());
    EXPECT_EQ(Parts::GetInstanceIdAttr()->GetProperties().GetCode(), 30);
    EXPECT_EQ(Add().GetAttributeByName("Hidden"), nullptr);

    Add method;
    EXPECT_FALSE(method.IsRequestLite());
    method.SetLiteObjectRequest();
    EXPECT_TRUE(method.IsRequestLite());
    EXPECT_EQ(method.GetStringDirect("LiteObj"), "1");

    APISample::APISampleGetListMethod list;
    GETLISTApiMethod& base = list;
    base.SetFilter(GETListFilter(GETListFilterType::And, {{"A", FILTERType::Equal, "<1>"}}));
    EXPECT_EQ(list.GetStringDirect("Filter"), "and A = &lt;1&gt;-");
    EXPECT_EQ(base.GetFilter().GetFilters().at(0).GetValue(), "<1>");
}

}  // namespace
