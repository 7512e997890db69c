// Typed values to text and back, through the typed accessors, for every kind.
#include <gmock/gmock.h>

#include <functional>
#include <limits>

#include "tests/apiMgmt/apiStub/base/sampleClasses.h"

namespace {

struct WriteCase {
    const char* attribute;
    std::function<void(APISample&)> set;
    std::string text;
};

const APISampleRecord& record(const char* comment) {
    static APISampleRecord sample;
    sample.SetAddress("10.0.0.5");
    sample.SetPort(3260);
    sample.SetComment(comment);
    return sample;
}

// clang-format off
const WriteCase writeCases[] = {
    {"Truth",   [](APISample& s) { s.SetTruth(true); },                             "True"},
    {"Truth",   [](APISample& s) { s.SetTruth(false); },                            "False"},
    {"Number",  [](APISample& s) { s.SetNumber(std::numeric_limits<std::int64_t>::min()); }, "-9223372036854775808"},
    {"Text",    [](APISample& s) { s.SetText(" a:b<c> "); },                        " a:b<c> "},
    {"InstanceName", [](APISample& s) { s.SetInstanceName("n-1"); },                "n-1"},
    {"InstanceId",   [](APISample& s) { s.SetInstanceId("101.5"); },                "101.5"},
    {"Ip",      [](APISample& s) { s.SetIp("10.1.2.3"); },                          "10.1.2.3"},
    {"Ip",      [](APISample& s) { s.SetIp("10.1.2"); },                            "0.0.0.0"},
    {"Enum",    [](APISample& s) { s.SetEnum(FilterTimeEnum::LastWeek); },          "LastWeek"},
    {"Enum",    [](APISample& s) { s.SetEnum(FilterTimeEnum{77}); },                "77"},
    {"Mask",    [](APISample& s) { s.SetMask({FilterTimeEnum::LastDay, FilterTimeEnum::Other}); }, "LastDay Other"},
    {"Mask",    [](APISample& s) { s.SetMask({}); },                                ""},
    {"Texts",   [](APISample& s) { s.SetTexts({"a:b", "", "c"}); },                 "a-co-b::c"},
    {"Parent",  [](APISample& s) { s.SetParent({"101.5", "TarnServer", "My Server"}); }, "101.5 TarnServer My Server"},
    {"Parents", [](APISample& s) { s.SetParents({{"1", "T", "a:b"}, {"2", "T", "c"}}); }, "1 T a-co-b:2 T c"},
    {"Record",  [](APISample& s) { s.SetRecord(record("<&>")); },
     "<SampleRecord><Address>10.0.0.5</Address><Port>3260</Port><Comment>&lt;&amp;&gt;</Comment></SampleRecord>"},
    {"Records", [](APISample& s) { APISampleRecord bare; s.SetRecords({&bare, nullptr, &bare}); },
     "<SampleRecord></SampleRecord><SampleRecord></SampleRecord>"},
    {"Filter",  [](APISample& s) { GETListFilter f(GETListFilterType::Or); f.AddAttributeFilter("Size", FILTERType::Less, "-1"); s.SetFilter(f); },
     "or Size < &hy&1-"},
    {"Time",    [](APISample& s) { s.SetTime(DATETimeObject("11/14/2026-15:04:05")); }, "11/14/2026 03:04:05 PM"},
};
// clang-format on

TEST(AttributeText, TypedSettersStoreTheKindsText) {
    for (const WriteCase& row : writeCases) {
        APISample sample;
        row.set(sample);
        EXPECT_EQ(sample.GetStringDirect(row.attribute), row.text) << row.attribute;
        EXPECT_EQ(sample.AllValues().size(), 1U) << row.attribute;
    }
}

struct ReadCase {
    const char* attribute;
    std::string text;
    std::function<bool(const APISample&)> holds;
};

// clang-format off
const ReadCase readCases[] = {
    {"Truth",  "1",      [](const APISample& s) { return s.GetTruth(); }},
    {"Truth",  "TRUE",   [](const APISample& s) { return s.GetTruth(); }},
    {"Truth",  "true",   [](const APISample& s) { return s.GetTruth(); }},
    {"Truth",  "yes",    [](const APISample& s) { return !s.GetTruth(); }},
    {"Truth",  "01",     [](const APISample& s) { return !s.GetTruth(); }},
    {"Truth",  " true",  [](const APISample& s) { return !s.GetTruth(); }},
    {"Truth",  "",       [](const APISample& s) { return !s.GetTruth(); }},
    {"Number", "",       [](const APISample& s) { return s.GetNumber() == 0; }},
    {"Number", " +12x",  [](const APISample& s) { return s.GetNumber() == 12; }},
    {"Number", "x12",    [](const APISample& s) { return s.GetNumber() == 0; }},
    {"Number", "99999999999999999999",  [](const APISample& s) { return s.GetNumber() == std::numeric_limits<std::int64_t>::max(); }},
    {"Number", "-99999999999999999999", [](const APISample& s) { return s.GetNumber() == std::numeric_limits<std::int64_t>::min(); }},
    {"Ip",     "",             [](const APISample& s) { return s.GetIp() == "0.0.0.0"; }},
    {"Ip",     "255.0.0.255",  [](const APISample& s) { return s.GetIp() == "255.0.0.255"; }},
    {"Ip",     "256.0.0.1",    [](const APISample& s) { return s.GetIp() == "0.0.0.0"; }},
    {"Ip",     "1.2.3.4 ",     [](const APISample& s) { return s.GetIp() == "0.0.0.0"; }},
    {"Ip",     std::string("1.2.3.4\0x", 9), [](const APISample& s) { return s.GetIp() == "0.0.0.0"; }},
    {"Enum",   "\t LastDay\n", [](const APISample& s) { return s.GetEnum() == FilterTimeEnum::LastDay; }},
    {"Enum",   "3",            [](const APISample& s) { return s.GetEnum() == FilterTimeEnum::LastMonth; }},
    {"Enum",   "99999999999",  [](const APISample& s) { return static_cast<int>(s.GetEnum()) == std::numeric_limits<int>::max(); }},
    {"Enum",   "Yesterday",    [](const APISample& s) { return s.GetEnum() == FilterTimeEnum::Other; }},
    {"Mask",   " LastDay   Other ", [](const APISample& s) { return s.GetMask() == std::vector{FilterTimeEnum::LastDay, FilterTimeEnum::Other}; }},
    {"Texts",  "a-co-b:c",     [](const APISample& s) { return s.GetTexts() == std::vector<std::string>{"a:b", "c"}; }},
    {"Texts",  "",             [](const APISample& s) { return s.GetTexts().empty(); }},
    {"Parent", "",             [](const APISample& s) { return s.GetParent() == nullptr; }},
    {"Parent", "101.5 TarnServer My  Server", [](const APISample& s) { return *s.GetParent() == APIObjectInstance("101.5", "TarnServer", "My  Server"); }},
    {"Parent", "101.5",        [](const APISample& s) { return !s.GetParent()->IsValid(); }},
    {"Parents", "1 T a-co-b: : 2 T c :", [](const APISample& s) { return s.GetParents() == std::vector<APIObjectInstance>{{"1", "T", "a:b"}, {"2", "T", "c"}}; }},
    {"Record", "<SampleRecord><Port>7</Port></SampleRecord>", [](const APISample& s) { return s.GetRecord()->GetPort() == 7; }},
    {"Record", "<SampleRecord>", [](const APISample& s) { return s.GetRecord() == nullptr; }},
    {"Records", "<SampleRecord><Port>7</Port></SampleRecord><Other/><SampleRecord/>",
     [](const APISample& s) { const auto r = s.GetRecords(); return r.size() == 2 && r[0]->GetPort() == 7 && !r[1]->IsAttributeSet("Port"); }},
    {"Records", "</list><SampleRecord/><list>", [](const APISample& s) { return s.GetRecords().empty(); }},
    {"Filter", "or Name = a - Size > 10", [](const APISample& s) { return s.GetFilter().ToString() == "or Name = a-Size > 10-"; }},
    {"Time",   "2026-11-14",   [](const APISample& s) { return s.GetTime().GetSeconds() == 0; }},
};
// clang-format on

TEST(AttributeText, TypedGettersReadAnyText) {
    for (const ReadCase& row : readCases) {
        APISample sample;
        sample.PutStringDirect(row.attribute, row.text);
        EXPECT_TRUE(row.holds(sample)) << row.attribute << " of \"" << row.text << '"';
    }
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
static_assert(Declarable<apiKind::INT, VALUEBounds> && !Declarable<apiKind::INT>);
static_assert(!Declarable<apiKind::INT, TEXTBounds>);
static_assert(Declarable<apiKind::STRING, VALUEBounds> && !Declarable<apiKind::STRING>);
static_assert(Declarable<apiKind::STRING, TEXTBounds>);
static_assert(Declarable<apiKind::NAME, VALUEBounds> && !Declarable<apiKind::NAME>);
static_assert(Declarable<apiKind::BOOLEAN> && !Declarable<apiKind::BOOLEAN, VALUEBounds>);
static_assert(!Declarable<apiKind::ENUM<FilterTimeEnum>, VALUEBounds>);
static_assert(!Declarable<apiKind::DATETIME, VALUEBounds>);
static_assert(!Declarable<apiKind::METHODOBJECTARRAY<APISampleRecord>, VALUEBounds>);

}  // namespace
