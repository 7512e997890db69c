#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <sstream>
#include <string>

#include "apiMgmt/apiStub/base/methodReturns/boolMethodReturn.h"
#include "apiMgmt/apiStub/base/methodReturns/compObjectMethodReturn.h"
#include "apiMgmt/apiStub/base/methodReturns/enumMaskMethodReturn.h"
#include "apiMgmt/apiStub/base/methodReturns/enumMethodReturn.h"
#include "apiMgmt/apiStub/base/methodReturns/intMethodReturn.h"
#include "apiMgmt/apiStub/base/methodReturns/methodObjectMethodReturn.h"
#include "apiMgmt/apiStub/base/methodReturns/stringMethodReturn.h"
#include "tests/apiMgmt/apiStub/base/methodReturns/returnText.h"
#include "tests/apiMgmt/apiStub/base/testClasses.h"
#include "tests/support/replyMessage.h"

namespace {

using ReturnPtr = std::unique_ptr<BASEApiMethodReturn>;

/// Counts its instances, to show who deletes what.
class CountedRecord : public APIRecord {
public:
    CountedRecord() { ++alive; }
    ~CountedRecord() override { --alive; }
    static inline int alive = 0;
};

APIThing* thing(const std::string& name, const std::string& notes = "") {
    auto made = std::make_unique<APIThing>();
    made->SetName(name);
    if (!notes.empty())
        made->SetNotes(notes);
    return made.release();
}

template <class Return>
ReturnPtr withText(const std::string& text) {
    auto made = std::make_unique<Return>(true);
    made->SetReturnObject(text);
    return made;
}

ReturnPtr objects(bool isArray, std::initializer_list<BASEApiObject*> list) {
    auto made = std::make_unique<COMPObjectMethodReturn>(isArray);
    made->SetReturnObject(std::vector<BASEApiObject*>(list));
    return made;
}

ReturnPtr records(bool isArray, std::initializer_list<std::string> texts) {
    auto made = std::make_unique<METHODObjectMethodReturn>(isArray);
    for (const std::string& text : texts) {
        auto record = std::make_unique<APIRecord>();
        record->SetLabel(text);
        made->SetReturnObject(record.release(), false);
    }
    return made;
}

BASEApiObject* other(std::int64_t size) {
    auto made = std::make_unique<APIOther>();
    made->SetSize(size);
    return made.release();
}

ReturnPtr readBack(const std::string& document) {
    return ReturnPtr(APIThingSetMethod().ProcessResponse(replyWith(document)));
}

struct Rendered {
    std::function<ReturnPtr()> make;
    std::string value;  // the value's element in the XML encoding
};

// clang-format off
const Rendered renderedReturns[] = {
    {[] { return std::make_unique<BOOLMethodReturn>(true); },    "<ReturnBool>True</ReturnBool>"},
    {[] { return std::make_unique<BOOLMethodReturn>(false); },   "<ReturnBool>False</ReturnBool>"},
    {[] { return std::make_unique<INTMethodReturn>(-2147483647 - 1); }, "<ReturnInt>-2147483648</ReturnInt>"},
    {[] { return std::make_unique<STRINGMethodReturn>("a<&'\"\n "); },
             "<ReturnString>a&lt;&amp;&apos;&quot;&#x0a; </ReturnString>"},
    {[] { return std::make_unique<STRINGMethodReturn>(); },      "<ReturnString></ReturnString>"},
    {[] { return withText<ENUMMethodReturn>("Up"); },            "<ReturnEnum>Up</ReturnEnum>"},
    {[] { return withText<ENUMMaskMethodReturn>("A B"); },       "<ReturnEnumMask>A B</ReturnEnumMask>"},
    {[] { return records(false, {}); },                          "<ReturnMethodObject />"},
    {[] { return records(true, {}); },                           "<ReturnMethodObjectArray />"},
    {[] { return records(false, {"a<b"}); },
             "<ReturnMethodObject><Record><Label>a&lt;b</Label></Record></ReturnMethodObject>"},
    {[] { return records(true, {"a", ""}); },
             "<ReturnMethodObjectArray><Record><Label>a</Label></Record><Record><Label></Label></Record></ReturnMethodObjectArray>"},
    {[] { return objects(false, {thing("n")}); },
             "<ReturnObject><Thing><Name>n</Name></Thing></ReturnObject>"},
    {[] { return objects(true, {}); },                           "<ReturnObjectArray></ReturnObjectArray>"},
    {[] { return objects(true, {thing("a,b:c", "<&>\nx"), thing("n", "o"), other(3), thing("z", "y")}); },
             "<ReturnObjectArray><Thing><Name>a,b:c</Name><Notes>&lt;&amp;&gt;&#x0a;x</Notes></Thing>"
             "<Thing><Name>n</Name><Notes>o</Notes></Thing><Other><Size>3</Size></Other>"
             "<Thing><Name>z</Name><Notes>y</Notes></Thing></ReturnObjectArray>"},
};
// clang-format on

TEST(MethodReturnTest, IsReadBackToTheSameReturn) {
    for (const Rendered& rendered : renderedReturns) {
        const ReturnPtr made = rendered.make();
        EXPECT_EQ(made->GetReturnString(ObjectReturnEncodeEnum::Xml), rendered.value);
        for (const auto& row : gObjectReturnEncodeEnumIdStrList.GetRows()) {
            const std::string document = made->ToString(row.id);
            const ReturnPtr read = readBack(document);
            EXPECT_EQ(returnText(*read), returnText(*made)) << document;
            // The kind is the same too, so that it writes itself alike.
            EXPECT_EQ(read->ToString(row.id), document);
        }
    }
}

TEST(MethodReturnTest, WritesCommaSeparatedSections) {
    const ReturnPtr made = objects(true, {thing("a,b"), thing("c:\td", "&"), other(3)});
    EXPECT_EQ(made->GetReturnString(ObjectReturnEncodeEnum::Csv),
              "<ReturnObjectArray>"
              "<Thing><Header>Name,Notes</Header><Data>a--cm--b,\nc--cl----nl--d,&amp;\n</Data>"
              "</Thing><Other><Header>Size</Header><Data>3\n</Data></Other></ReturnObjectArray>");
    EXPECT_EQ(made->GetReturnString(ObjectReturnEncodeEnum::CsvData),
              "<ReturnObjectArray><Thing><Data>a--cm--b,,,,\nc--cl----nl--d,&amp;,,,\n</Data>"
              "</Thing><Other><Data>3\n</Data></Other></ReturnObjectArray>");
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
    EXPECT_EQ(returnText(*readBack(failed.ToString(ObjectReturnEncodeEnum::Xml))),
              "failed 25|e|l|d");
}

TEST(MethodReturnTest, SucceedsAsItsKindSays) {
    EXPECT_TRUE(BOOLMethodReturn(false, false, nullptr).GetSuccessful());
    EXPECT_FALSE(INTMethodReturn(1, false, nullptr).GetSuccessful());
    EXPECT_EQ(returnText(BASEApiMethodReturn(false)), "failed 1|||");
    EXPECT_TRUE(BASEApiMethodReturn().GetSuccessful());
}

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
        EXPECT_EQ(single.GetObject(), first);
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
        array.SetReturnObject({array.GetObjects()[1], new CountedRecord()});
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
    APIThingSetMethod method;
    std::ostringstream text;
    text << BASEApiMethodReturn(true, &method)
         << BASEApiMethodReturn(false, ErrorStateEnum::InvalidRequest, "bad", "", "");
    EXPECT_EQ(text.str(),
              "success=1\nmethod name=Set\nobject name=Thing\n"
              "success=0\nerror code=8\nerror message=bad\n");
}

TEST(EnumMaskTest, SplitsAtAnyWhiteSpace) {
    using Names = std::vector<std::string>;
    EXPECT_EQ(ENUMMaskMethodReturn::GetEnumList(" \n A \t\tB "), (Names{"A", "B"}));
    EXPECT_EQ(ENUMMaskMethodReturn::GetEnumList(" "), Names());
}

}  // namespace
