// What attributes accept, their messages to the letter, how they evaluate conditions, and what they
// make of texts.
#include <gmock/gmock.h>

#include <map>
#include <thread>

#include "apiMgmt/apiStub/base/filters/apiAttributeFilter.h"
#include "testbed/sampleClasses.h"
#include "tests/apiMgmt/apiStub/base/errorOf.h"

namespace {

struct Check {
    std::shared_ptr<const BASEApiAttribute> attribute;
    std::string value;
    unsigned int messageId;  // 0: accepted
    std::string message;
    std::string parameters;
};

auto number(std::int64_t minimum, std::int64_t maximum) {
    return std::make_shared<INTApiAttribute>("N", 7, false, minimum, maximum, "Some Number");
}

auto text(std::int64_t minimum, std::int64_t maximum, const char* forbidden = "") {
    return std::make_shared<STRINGApiAttribute>("T", 20, false, minimum, maximum, forbidden, "",
                                                "Some Text");
}

constexpr std::int64_t kNone = -2147483647;

// clang-format off
const Check kChecks[] = {
    {number(0, -1),    "0",           0, "", ""},
    {number(0, -1),    "-1",          10761, R"(Attribute "Some Number" was -1, but must be greater than or equal to 0)", "Some Number|0"},
    {number(kNone, -1), "-5000000000", 0, "", ""},
    {number(kNone, 9),  "9",           0, "", ""},
    {number(kNone, 0), "1",           10762, R"(Attribute "Some Number" was 1, but must be less than or equal to 0)", "Some Number|0"},
    {number(-1, 9),    "10",          10762, R"(Attribute "Some Number" was 10, but must be less than or equal to 9)", "Some Number|9"},
    {number(1, 4095),  "4095",        0, "", ""},
    {number(1, 4095),  "4096",        10760, R"(Attribute "Some Number" was 4096, but must be greater than or equal to 1 and less than or equal to 4095)", "Some Number|1|4095"},
    {number(1, 4095),  "zero",        10760, R"(Attribute "Some Number" was 0, but must be greater than or equal to 1 and less than or equal to 4095)", "Some Number|1|4095"},
    {text(1, -1),      "",            10763, R"(Attribute "Some Text" was "" [0 characters long], but must be a string at least 1 characters)", "Some Text|1"},
    {text(kNone, 0),   "a",           10764, R"(Attribute "Some Text" was "a" [1 characters long], but must be a string no more than 0 characters)", "Some Text|0"},
    {text(0, 3),       "abc",         0, "", ""},
    {text(0, 3),       "\xc3\xa4\xc3\xa4", 10764, "Attribute \"Some Text\" was \"\xc3\xa4\xc3\xa4\" [4 characters long], but must be a string no more than 3 characters", "Some Text|3"},
    {text(0, 0, "<"),  "a<long one>", 0, "", ""},
    {text(-1, -1),     "",            0, "", ""},
    {text(1, 9, "<>&"), "a>b",        10011, R"(Attribute "Some Text" was "a>b", but cannot contain these characters: <>&)", "Some Text"},
    {text(1, 9, "<>&"), "a-b",        0, "", ""},
    {text(kNone, -1, "%"), "%n%s",     10011, R"(Attribute "Some Text" was "%n%s", but cannot contain these characters: %)", "Some Text"},
    {std::make_shared<NAMEApiAttribute>("N", 50, false, false, 1, -1, ""), "", 10763,
     R"(Attribute "" was "" [0 characters long], but must be a string at least 1 characters)", "|1"},
    {std::make_shared<STRINGApiAttribute>("T", 20, false, "Some Text"), std::string(9, '&'), 0, "", ""},
    {std::make_shared<INTApiAttribute>(std::make_unique<BASEApiAttribute::BASEAttributeProperties>("N", 1, false, "N")), "-1", 0, "", ""},
    {std::make_shared<BOOLEANApiAttribute>("B", 20, false, "B"), "neither", 0, "", ""},
};
// clang-format on

TEST(AttributeCheck, SaysExactlyWhatIsWrong) {
    for (const Check& row : kChecks) {
        const APIMethodError error =
            errorOf([&] { EXPECT_TRUE(row.attribute->Validate(row.value)); });
        EXPECT_STREQ(error.what(), row.message.c_str()) << row.value;
        EXPECT_EQ(error.GetLocalizedMsgId(), row.messageId);
        EXPECT_EQ(error.GetMsgParameters(), row.parameters);
        if (row.messageId == 0) {
            continue;
        }
        EXPECT_EQ(error.GetErrorState(), ErrorStateEnum::ParsingError);
        EXPECT_EQ(error.GetSourceFile(), row.messageId < 10763 && row.messageId != 10011
                                             ? "intApiAttribute"
                                             : "stringApiAttribute");
    }
}

TEST(AttributeCheck, AnAttributeNeedsProperties) {
    const APIMethodError error = errorOf([] { const INTApiAttribute attribute(nullptr); });
    EXPECT_STREQ(error.what(), "Base API Attribute constructor: NULL pointer for properties");
    EXPECT_EQ(error.GetErrorState(), ErrorStateEnum::InvalidArguments);
    EXPECT_EQ(error.GetLocalizedMsgId(), 10004U);
    EXPECT_EQ(error.GetMsgParameters(), "");
}

struct Condition {
    const char* value;
    const char* type;
    const char* operand;
    bool matches;
};

// clang-format off
const std::map<const BASEApiAttribute*, std::vector<Condition>> kConditions = {
    {APISample::GetNumberAttr(), {{"10", ">", "9", true}, {"10", ">=", "10", true}, {"-10", "<", "-9", true},
        {"10", "<=", "9", false}, {"10", "<=", "10", true}, {"10", "<", "10", false}, {"10", ">", "10", false}, {"10", "=", "010", true}, {"", "=", "0", false}, {"1", "iqin", "1", false},
        {"1", "!=", "1", false}}},
    {APISample::GetTextAttr(), {{"a-B", "=", "A&hy&b", true}, {"b", ">", "A", true}, {"10", ">", "9", false},
        {"", "=", "", false}, {"My Server", "iqin", "sERV", true}, {"My Server", "iqs", "sERV", false},
        {"My Server", "iqs", "mY", true}, {"My Server", "iqs", "y s", false}}},
    {APISample::GetInstanceNameAttr(), {{"n", "=", "N", true}}},
    {APISample::GetInstanceIdAttr(), {{"101.5", "=", "101.5", true}}},
    {APISample::GetTruthAttr(), {{"1", "=", "TRUE", true}, {"no", "<", "true", true},
        {"", "=", "false", false}}},
    {APISample::GetEnumAttr(), {{" LastDay ", "=", "lastday", true}}},
    {APISample::GetMaskAttr(), {{"LastDay LastWeek", "=", "lastday lastweek", true},
        {"LastDay LastWeek", "=", "LastWeek", false}}},
    {APISample::GetTextsAttr(), {{"x:a-co-b", "=", "X:A&hy&co&hy&b", true}, {"x:y", "=", "y", false}}},
    {APISample::GetIpAttr(), {{"10.0.0.9", "<", "10.0.0.10", true}, {"200.0.0.1", ">", "10.0.0.1", true},
        {"junk", "=", "0.0.0.0", false}, {"0.0.0.0", "=", "junk", false}}},
    {APISample::GetParentAttr(), {{"1 T My Server", "=", "1 t my server", true},
        {"1 T My Server", "=", "My Server", false}, {"1 T My Server", "iqin", "my server", true}}},
    {APISample::GetParentsAttr(), {{"1 T a:2 T b", "=", "2 T b", false}, {"1 T a:2 T b", "iqin", "2 T b", true}}},
    {APISample::GetTimeAttr(), {{"11/14/2026 03:04:05 PM", "=", "11/14/2026&hy&15:04:05", true},
        {"11/14/2026 03:04:05 PM", ">", "12/01/2025-00:00:00", true}, {"", "=", "never", false}}},
    {APISample::GetRecordAttr(), {{"<R/>", "=", "<r/>", true}}},
    {APISample::GetRecordsAttr(), {{"<R/>", "=", "<S/>", false}}},
    {APISample::GetFilterAttr(), {{"and A = 1-", "=", "and A = 1&hy&", true}}},
};
// clang-format on

TEST(AttributeFilter, EachKindComparesInItsOwnWay) {
    for (const auto& [attribute, rows] : kConditions) {
        for (const Condition& row : rows) {
            EXPECT_EQ(attribute->ApplyFilter(
                          {"X", APIAttributeFilter::GetFilterTypeFromString(row.type), row.operand},
                          row.value),
                      row.matches)
                << attribute->GetXmlName() << ' ' << row.value << ' ' << row.type << ' '
                << row.operand;
        }
    }
}

// Under ThreadSanitizer this shows that the first use needs no further guard.
TEST(AttributeDescriptors, AreBuiltOnceForAllThreads) {
    class Fresh : public BASEApiMethodObject {
        API_METHOD_OBJECT(Fresh);
        API_ATTRIBUTE(A, "A", STRING, 20, NoBounds);
        API_ATTRIBUTE(B, "B", ENUM<FilterTimeEnum>, 20);
        API_ATTRIBUTE_LIST(A, B);
    };
    constexpr std::size_t kThreads = 8;
    std::vector<const APIAttributeList*> lists(kThreads);
    std::vector<std::jthread> threads;
    for (std::size_t i = 0; i < kThreads; ++i) {
        threads.emplace_back([&lists, i] {
            Fresh record;
            record.SetA("text");
            record.SetB(FilterTimeEnum::LastDay);
            lists[i] = &record.GetAttributeList();
        });
    }
    threads.clear();  // waits for all
    EXPECT_THAT(lists, testing::Each(lists.front()));
    EXPECT_THAT(*lists.front(), testing::ElementsAre(Fresh::GetAAttr(), Fresh::GetBAttr()));
}

struct Case {
    const char* attribute;
    std::string read;
    std::string written;
};

// clang-format off
const Case kCases[] = {
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
    for (const Case& row : kCases) {
        APISample sample;
        sample.PutStringDirect(row.attribute, row.read);
        rewrite(sample);
        EXPECT_EQ(sample.GetStringDirect(row.attribute), row.written)
            << row.attribute << " of \"" << row.read << '"';
    }
}

TEST(AttributeText, OfAListKeepsItsSeparatorsOutOfItsItems) {
    APISample sample;
    sample.SetTexts({"a:b", "c"});
    sample.SetParents({{"1", "T", "a: b"}, {"2", "T", "c"}});
    EXPECT_EQ(sample.GetStringDirect("Texts"), "a-co-b:c");
    EXPECT_EQ(sample.GetStringDirect("Parents"), "1 T a-co- b:2 T c");
    EXPECT_EQ(sample.GetTexts(), (std::vector<std::string>{"a:b", "c"}));
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
