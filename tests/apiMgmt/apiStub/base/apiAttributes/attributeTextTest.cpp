// Typed values to text and back, through the typed accessors, for every kind.
#include <gtest/gtest.h>

#include "tests/apiMgmt/apiStub/base/sampleClasses.h"

namespace {

struct Case {
    const char* attribute;
    std::string read;
    std::string written;
};

// clang-format off
const Case cases[] = {
    {"Truth",  "1",            "True"},
    {"Truth",  "TRUE",         "True"},
    {"Truth",  "true",         "True"},
    {"Truth",  "yes",          "False"},
    {"Truth",  "01",           "False"},
    {"Truth",  " true",        "False"},
    {"Truth",  "",             "False"},
    {"Number", "",             "0"},
    {"Number", " +12x",        "12"},
    {"Number", "x12",          "0"},
    {"Number", "99999999999999999999",  "9223372036854775807"},
    {"Number", "-99999999999999999999", "-9223372036854775808"},
    {"Text",   " a:b<c> ",     " a:b<c> "},
    {"InstanceName", " n-1",   " n-1"},
    {"InstanceId",   "101.5 ", "101.5 "},
    {"Ip",     "",             "0.0.0.0"},
    {"Ip",     "255.0.0.255",  "255.0.0.255"},
    {"Ip",     "256.0.0.1",    "0.0.0.0"},
    {"Ip",     "10.1.2",       "0.0.0.0"},
    {"Ip",     "1.2.3.4 ",     "0.0.0.0"},
    {"Ip",     std::string("1.2.3.4\0x", 9), "0.0.0.0"},
    {"Enum",   "\t LastDay\n", "LastDay"},
    {"Enum",   "3",            "LastMonth"},
    {"Enum",   "77",           "77"},
    {"Enum",   "99999999999",  "2147483647"},
    {"Enum",   "Yesterday",    "Other"},
    {"Mask",   " LastDay   Other ", "LastDay Other"},
    {"Mask",   "",             ""},
    {"Texts",  "a-co-b::c",    "a-co-b::c"},
    {"Texts",  "",             ""},
    {"Parent", "",             ""},
    {"Parent", "101.5 TarnServer My  Server",    "101.5 TarnServer My  Server"},
    {"Parents", "1 T a-co-b: : 2 T c :",         "1 T a-co-b:2 T c"},
    {"Record", "<SampleRecord><Port>7</Port><Comment>&lt;&amp;</Comment></SampleRecord>",
               "<SampleRecord><Port>7</Port><Comment>&lt;&amp;</Comment></SampleRecord>"},
    {"Record", "<SampleRecord>", "<SampleRecord>"},  // null, and so not written
    {"Records", "<SampleRecord><Port>7</Port></SampleRecord><Other/><SampleRecord/>",
                "<SampleRecord><Port>7</Port></SampleRecord><SampleRecord></SampleRecord>"},
    {"Records", "</list><SampleRecord/><list>",  ""},
    {"Filter", "or Name = a - Size > 10",        "or Name = a-Size > 10-"},
    {"Filter", "or Size < &hy&1",                "or Size < &hy&1-"},
    {"Time",   "11/14/2026-15:04:05",            "11/14/2026 03:04:05 PM"},
};
// clang-format on

TEST(AttributeText, IsReadAndWrittenByTypedAccessors) {
    for (const Case& row : cases) {
        APISample sample;
        sample.PutStringDirect(row.attribute, row.read);
        rewrite(sample);
        EXPECT_EQ(sample.GetStringDirect(row.attribute), row.written)
            << row.attribute << " of \"" << row.read << '"';
    }
}

TEST(AttributeText, IsReadWhereItIsNoValue) {
    APISample sample;
    sample.PutStringDirect("Parent", "101.5");
    sample.PutStringDirect("Time", "2026-11-14");
    EXPECT_FALSE(sample.GetParent()->IsValid());
    EXPECT_EQ(sample.GetTime().GetSeconds(), 0);
    APISampleRecord bare;
    sample.SetRecords({&bare, nullptr, &bare});
    EXPECT_EQ(sample.GetRecords().size(), 2U);
}

TEST(EnumIdStrList, LooksUpBothWays) {
    for (const auto& row : gFilterTimeEnumIdStrList.GetRows()) {
        EXPECT_EQ(gFilterTimeEnumIdStrList.GetId(row.xmlName), row.id);
        EXPECT_EQ(gFilterTimeEnumIdStrList.GetIdFromDisplayText(row.displayText), row.id);
        EXPECT_EQ(gFilterTimeEnumIdStrList.GetXmlName(row.id), row.xmlName);
        EXPECT_EQ(gFilterTimeEnumIdStrList.GetDisplayText(row.id), row.displayText);
    }
    EXPECT_EQ(gFilterTimeEnumIdStrList.GetId("lastDAY"), FilterTimeEnum::LastDay);
    EXPECT_EQ(gFilterTimeEnumIdStrList.GetDisplayText(FilterTimeEnum{-4}), "-4");
    EXPECT_EQ(gFilterTimeEnumIdStrList.GetId("-4"), FilterTimeEnum{-4});
    EXPECT_EQ(gFilterTimeEnumIdStrList.GetIdFromDisplayText("LastDay"), FilterTimeEnum::Other);
}

template <class Kind, class... Bounds>
concept Declarable = requires(Bounds... bounds) {
    Kind::Make("Name", "Name", 20, bounds...);
};

// Bounds where a kind has none, and none where it needs them, must not compile.
using apiKind::TEXTBounds;
using apiKind::VALUEBounds;
static_assert(Declarable<apiKind::INT, VALUEBounds>);
static_assert(!Declarable<apiKind::INT> && !Declarable<apiKind::INT, TEXTBounds>);
static_assert(Declarable<apiKind::STRING, VALUEBounds> && !Declarable<apiKind::STRING>);
static_assert(Declarable<apiKind::STRING, TEXTBounds>);
static_assert(Declarable<apiKind::BOOLEAN> && !Declarable<apiKind::BOOLEAN, VALUEBounds>);

}  // namespace
