// Local time in a zone with daylight saving, written as a rule so that no zone data is needed.
#include <gtest/gtest.h>

#include <cstdlib>
#include <limits>
#include <stdexcept>
#include <thread>
#include <vector>

#include "apiMgmt/apiStub/base/filters/dateTimeObject.h"

namespace {

class DateTime : public testing::Test {
protected:
    static void SetUpTestSuite() {
        setenv("TZ", "CET-1CEST,M3.5.0,M10.5.0/3", 1);  // NOLINT(concurrency-mt-unsafe)
        tzset();
    }
};

TEST_F(DateTime, ReadsBothFormsAndWritesWhatItReads) {
    const std::pair<const char*, std::int64_t> rows[] = {
        // clang-format off
        {"11/14/2026 03:04:05 PM", 1794665045},  {"11/14/2026-15:04:05", 1794665045},  // 14:04:05 UTC
        {"11/14/2026 12:00:00 AM", 1794610800},  {"11/14/2026 12:00:00 PM", 1794654000},
        {"07/01/2026-14:00:00", 1782907200},     // 12:00 UTC in summer
        {"03/29/2026-01:59:59", 1774745999},     {"03/29/2026-03:00:00", 1774746000},  // clock goes forward
        {"10/25/2026-04:00:00", 1792897200},     // after it went back
        {"12/31/1969-23:59:59", -3601},          {"01/01/1970-00:59:59", -1},  // as mktime says failure
        {"01/01/1901-01:00:00", -2177452800},    {"01/19/2038-04:14:08", 2147483648},
        {"12/31/9999-23:59:59", 253402297199},   {"13/01/2026-00:00:00", 0},
        {"2026-11-14", 0}, {"", 0}, {"11/14/2026", 0}, {"never", 0},
        // clang-format on
    };
    for (const auto& [text, seconds] : rows) {
        const DATETimeObject time((std::string(text)));
        EXPECT_EQ(time.GetSeconds(), seconds) << text;
        EXPECT_EQ(DATETimeObject(time.ToString()), time) << text;
    }
    EXPECT_EQ(DATETimeObject(1794665045).ToString(), "11/14/2026 03:04:05 PM");
    EXPECT_EQ(DATETimeObject("2026-11-14", "%Y-%m-%d").GetSeconds(), 1794610800);
    EXPECT_EQ(DATETimeObject("14.11.2026", "%Y-%m-%d").GetSeconds(), 0);
}

TEST_F(DateTime, FieldsAreLocalTime) {
    const DATETimeObject time("07/09/2026-14:05:06");
    const std::vector<int> fields{time.GetYear(), time.GetMonth(),  time.GetDay(),
                                  time.GetHour(), time.GetMinute(), time.GetSecond()};
    EXPECT_EQ(fields, (std::vector{2026, 7, 9, 14, 5, 6}));
    EXPECT_EQ(time.GetMinutesElapsedOfTheDay(), 14 * 60 + 5);
    EXPECT_EQ(time.GetAsTMStruct().tm_isdst, 1);
}

TEST_F(DateTime, MovesAndComparesWithoutOverflow) {
    using Limits = std::numeric_limits<std::int64_t>;
    DATETimeObject time("03/29/2026-01:59:59");
    const DATETimeObject before = time;
    time.AddTimeInSeconds(1);
    EXPECT_EQ(time.GetHour(), 3);
    EXPECT_LT(before.Compare(time), 0);
    EXPECT_GT(time.Compare(before), 0);
    EXPECT_EQ(time.Compare(time), 0);
    time.AddTimeInSeconds(Limits::max());
    EXPECT_EQ(time.GetSeconds(), Limits::max());
    EXPECT_GT(time.Compare(DATETimeObject(Limits::min())), 0);
    time = DATETimeObject(-2);
    time.AddTimeInSeconds(Limits::min());
    EXPECT_EQ(time.GetSeconds(), Limits::min());
}

TEST_F(DateTime, TellsWhatCannotBeFormatted) {
    EXPECT_EQ(DATETimeObject(0).FormatAs(""), "");
    EXPECT_EQ(DATETimeObject(0).FormatAs("%"), "%");
    EXPECT_EQ(DATETimeObject(0).FormatAs(std::string("%Y\0%m", 5)), "1970");
    EXPECT_EQ(DATETimeObject(0).FormatAs(std::string(200, 'x')), std::string(200, 'x'));
    const DATETimeObject beyond(std::numeric_limits<std::int64_t>::max());
    EXPECT_THROW(beyond.GetYear(), std::out_of_range);
    testing::internal::CaptureStdout();
    EXPECT_EQ(beyond.ToString(), "");
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "Exception formatting datetime: instant beyond the calendar");
}

TEST_F(DateTime, ThreadsDoNotDisturbEachOther) {
    const auto look = [](std::int64_t instant) {
        const DATETimeObject time(instant);
        const std::string text = time.ToString();
        for (int round = 0; round < 200; ++round) {
            EXPECT_EQ(time.ToString(), text);
            EXPECT_EQ(DATETimeObject(text), time);
        }
    };
    const std::jthread other(look, 1803305045);
    look(1794665045);
}

}  // namespace
