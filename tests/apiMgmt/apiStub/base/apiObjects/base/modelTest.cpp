// Objects, records and references: their lists, their texts, and the registries; and the attribute
// side of methods and associations: store, checks, request element.
#include <gmock/gmock.h>

#include "apiMgmt/apiStub/base/apiObjects/base/registerClass.h"
#include "testbed/sampleClasses.h"
#include "tests/apiMgmt/apiStub/base/errorOf.h"

namespace {

using testing::ElementsAre;

/// An object whose name gives it a form of its own.
class APITask : public BASEApiObject {
    API_OBJECT(asyncTASK);
};

TEST(ObjectValues, TellEmptyFromUnset) {
    APISample sample;
    std::string value = "kept";
    EXPECT_FALSE(sample.GetStringDirect("Text", value));
    EXPECT_EQ(value, "kept");
    EXPECT_FALSE(sample.IsAttributeSet("Text"));

    sample.PutStringDirect("Text", "", false);
    EXPECT_TRUE(sample.GetStringDirect("Text", value));
    EXPECT_EQ(value, "");
    EXPECT_TRUE(sample.IsAttributeSet(APISample::GetTextAttr()));
    EXPECT_FALSE(sample.IsAttributeSet(static_cast<const BASEApiAttribute*>(nullptr)));

    sample.PutStringDirect("Text", "&lt;", false);
    EXPECT_EQ(sample.GetText(), "&lt;");
    sample.PutStringDirect("Text", "&lt;", true);
    EXPECT_EQ(sample.GetText(), "<");
}

TEST(ObjectText, XmlWritesSetAttributesInListOrder) {
    APISample sample;
    sample.SetInstanceId("7");
    sample.SetText("a<b>&\t");
    sample.SetTruth(true);
    sample.PutStringDirect("Unknown", "not in the list");
    EXPECT_EQ(sample.ToString(ObjectReturnEncodeEnum::Xml),
              "<Sample><Truth>True</Truth><Text>a&lt;b&gt;&amp;&#x0a;</Text>"
              "<InstanceId>7</InstanceId></Sample>");
    APITask task;
    task.SetInstanceName("copy");
    EXPECT_EQ(task.ToString(ObjectReturnEncodeEnum::Xml),
              "<asyncTASK><InstanceId></InstanceId><InstanceName>copy</InstanceName>"
              "<ObjectType></ObjectType></asyncTASK>");
}

TEST(ObjectText, CsvEscapesItsSeparators) {
    APITask task;
    task.SetInstanceName("a,b:c\nd");
    task.SetObjectType("--cm--");
    const std::string data = ",a--cm--b--cl--c--nl--d,--cm--";
    EXPECT_EQ(task.ToString(ObjectReturnEncodeEnum::CsvData), data);
    EXPECT_EQ(task.ToString(ObjectReturnEncodeEnum::Csv),
              "InstanceId,InstanceName,ObjectType\n" + data);
    const APIAttributeList two{APITask::GetObjectTypeAttr(), APITask::GetInstanceIdAttr()};
    EXPECT_EQ(task.CreateCSVHeaderAndData(two), "ObjectType,InstanceId\n--cm--,");
    const BASEApiObject::SelectionMap some{
        {"Beyond", true}, {"InstanceId", false}, {"InstanceName", true}};
    EXPECT_EQ(task.CreateCSVHeaderAndData(some), "InstanceName,Beyond\na--cm--b--cl--c--nl--d,");

    APITask copy;
    copy.ParseCSVData(copy.ParseCSVHeader("Beyond,InstanceId,InstanceName,ObjectType"),
                      "b,,a--cm--b--cl--c--nl--d");
    EXPECT_EQ(copy.GetInstanceName(), "a,b:c\nd");
    for (const char* name : {"Beyond", "InstanceId", "ObjectType"}) {
        EXPECT_FALSE(copy.IsAttributeSet(name)) << name;
    }
}

TEST(ObjectText, CombinedNamesTellWhichAnObjectHas) {
    APITask one;
    APITask other;
    one.SetInstanceId("1");
    other.SetObjectType("");
    EXPECT_THAT(BASEApiObject::GetCombinedAttributeNameList({&one, &other}),
                ElementsAre(std::pair("InstanceId", true), std::pair("InstanceName", false),
                            std::pair("ObjectType", true)));
}

TEST(ObjectReference, IsValidWithIdAndType) {
    APISample sample;
    sample.SetInstanceId("1");
    EXPECT_FALSE(sample.GetObjectIdentifier().IsValid());
    sample.SetObjectType("Sample");
    EXPECT_TRUE(APIObjectInstance(sample).IsValid());
    sample.SetInstanceName("A name");
    EXPECT_EQ(sample.GetObjectIdentifier().ToString(), "1 Sample A name");
    EXPECT_FALSE(APIObjectInstance("", "Sample", "A name").IsValid());
}

TEST(MethodObject, KeepsWhatItDoesNotKnow) {
    APISampleRecord record;
    EXPECT_EQ(record.ToXMLString(true), "<SampleRecord></SampleRecord>");
    ASSERT_TRUE(record.Parse("<Any><Later>1</Later><Deep><A>2 &lt;</A></Deep><Port/></Any>"));
    EXPECT_EQ(record.GetStringDirect("Later"), "1");
    EXPECT_EQ(record.GetStringDirect("Deep"), "<A>2 &lt;</A>");
    EXPECT_TRUE(record.IsAttributeSet("Port"));
    record.SetComment("a<b>");
    EXPECT_EQ(record.ToXMLString(false),
              "<SampleRecord><Port></Port><Comment>a<b></Comment></SampleRecord>");
    EXPECT_FALSE(record.Parse("<Any><Later>2</Later>"));
    EXPECT_EQ(record.GetStringDirect("Later"), "1");
}

TEST(Registries, KeepTheFirstOfAKey) {
    using Task = REGISTERClass<BASEApiObject, APITask, std::string>;
    EXPECT_FALSE(Task::Enter("Sample"));
    EXPECT_EQ(APIObjectRegistry::Instance().CreateObject("Sample")->GetObjectName(), "Sample");
    EXPECT_EQ(APIMethodRegistry::Instance().Find("APISampleaddMethod"), nullptr);
    EXPECT_EQ(APIObjectRegistry::Instance().CreateObject(""), nullptr);
}

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
    method.SetName("n");
    // One that is neither listed nor written.
    EXPECT_EQ(messageOf([&] { method.ValidateRequiredAttributes(); }),
              "Required attribute Hidden not set");
}

TEST(MethodChecks, ValuesAreJudgedAsTheCallerGaveThem) {
    Add method;
    method.ValidateAttributes();
    method.SetName("<<<");  // three characters, though they are stored as twelve
    method.SetLiteObjectRequest();
    method.ValidateAttributes();
    method.SetCount(-1);
    EXPECT_THAT(messageOf([&] { method.ValidateAttributes(); }),
                testing::StartsWith("Attribute \"Count\" was -1"));
    for (const char* name : {"", "<<<<"}) {
        method.SetName(name);
        EXPECT_THAT(messageOf([&] { method.ValidateAttributes(); }),
                    testing::StartsWith(std::string("Attribute \"Name\" was \"") + name + "\""));
    }
}

TEST(MethodFacts, OfLiteRequestsAssociationsAndLists) {
    EXPECT_TRUE(Parts().GetAttributeList().empty());
    EXPECT_EQ(Parts::GetInstanceIdAttr()->GetProperties().GetCode(), 30);
    EXPECT_EQ(Add().GetAttributeByName("Hidden"), nullptr);

    Add method;
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
