// The attribute side of methods and associations: store, checks, request element.
#include <gmock/gmock.h>

#include "apiMgmt/apiStub/base/methodReturns/apiMethodError.h"
#include "tests/apiMgmt/apiStub/base/sampleClasses.h"

namespace {

using Add = APISample::APISampleAddMethod;
using Parts = APISample::APISamplePartsAssociation;

std::string messageOf(const std::function<void()>& call) {
    try {
        call();
        return "";
    } catch (const APIMethodError& error) {
        return error.what();
    }
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
    EXPECT_THAT(Parts("1.2").GetXMLString(false, true),
                testing::AllOf(testing::HasSubstr("<CommandType>Association</CommandType>"),
                               testing::HasSubstr("<InstanceId>1.2</InstanceId>")));
}

TEST(MethodValues, TypedTextCannotLeaveItsElement) {
    const std::string hostile = "</Name><Key>&amp;\"'%s";
    Add method;
    method.SetName(hostile);
    EXPECT_EQ(method.GetStringDirect("Name"), "&lt;/Name&gt;&lt;Key&gt;&amp;amp;&quot;&apos;%s");
    EXPECT_EQ(method.GetName(), hostile);
    APISampleRecord record;
    record.SetComment(hostile);
    method.SetRecords({&record});
    parser::XMLParser reader(nullptr);
    ASSERT_TRUE(reader.ParseXMLString(method.GetXMLString(false, true)));
    const auto* attributes = reader.GetDocumentElement()->GetChildElemByTag("Attributes");
    EXPECT_EQ(attributes->GetChildTagVals().size(), 2U);
    EXPECT_EQ(attributes->GetChildElemContentByTag("Name"), hostile);
    EXPECT_EQ(method.GetRecords().at(0)->GetComment(), hostile);

    method.PutStringDirect("Name", "&lt;");
    EXPECT_EQ(method.GetXMLString(false, true).find("&amp;lt;"), std::string::npos);
}

TEST(MethodChecks, RequiredAttributesInStatedOrder) {
    Add method;
    const auto missing = [&] { return messageOf([&] { method.ValidateRequiredAttributes(); }); };
    EXPECT_EQ(missing(), "Required attribute Id not set");
    method.SetId("");  // empty is set
    EXPECT_EQ(missing(), "Required attribute Name not set");
    method.SetName("n");
    EXPECT_EQ(missing(), "Required attribute Hidden not set");
    method.SetHidden(false);
    EXPECT_EQ(missing(), "");

    const auto either = [&] { return messageOf([&] { method.ValidateRequiredOrAttributes(); }); };
    EXPECT_EQ(either(), "Required attribute Host, System not set");
    method.SetSystem("");
    EXPECT_EQ(either(), "");

    EXPECT_EQ(messageOf([] { Parts().ValidateRequiredAttributes(); }),
              "InstanceID not specified for association [Sample::Parts]");
    EXPECT_EQ(messageOf([] { Parts("7").ValidateRequiredAttributes(); }), "");
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

TEST(MethodFacts, ComeFromTheClassRowOrTheBase) {
    EXPECT_TRUE(Add().AsyncAllowed());
    EXPECT_EQ(Add().GetMinUserPriv(), UserPrivilegeEnum::VolumeManager);
    EXPECT_FALSE(Parts().AsyncAllowed());
    EXPECT_EQ(Parts().GetMinUserPriv(), UserPrivilegeEnum::Reporter);
    EXPECT_TRUE(Parts().GetAttributeList().empty());
    EXPECT_EQ(Parts::GetInstanceIdAttr()->GetProperties().GetCode(), 30);
    EXPECT_EQ(Add().GetAttributeByName("Hidden"), nullptr);
    EXPECT_EQ(Add().GetAttributeByName("Name"), Add::GetNameAttr());

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
