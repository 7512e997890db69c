// Any text as a date-time, and as a format, up to the first line feed.
#include <ctime>

#include "apiMgmt/apiStub/base/filters/dateTimeObject.h"
#include "fuzz/fuzzTarget.h"

namespace {

// Without daylight saving every local time is one instant.
const bool kZoneIsSet = [] {
    setenv("TZ", "UTC0", 1);  // NOLINT(concurrency-mt-unsafe): before any thread
    tzset();
    return true;
}();

constexpr int kMaxYear = 9999;  // the last whose text is read whole

}  // namespace

void drive(std::string_view bytes) {
    const std::string text(bytes);
    const auto end = text.find('\n');
    DATETimeObject time(text.substr(0, end));
    if (end != std::string::npos) {
        const std::string format = text.substr(end + 1);
        time.FormatAs(format);
        const DATETimeObject free(text.substr(0, end), format);
    }
    require(time.GetYear() > kMaxYear || DATETimeObject(time.ToString()) == time);
    time.GetMinutesElapsedOfTheDay();
}
